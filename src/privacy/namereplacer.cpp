#include "privacy/namereplacer.h"

#include "privacy/privacylogging.h"

namespace zentrik {

namespace {

// The text being edited, kept as: the finished part, a short pending part (replacement
// text and whatever of it a following match may still overwrite), then the untouched rest
// of the source. Matches arrive in increasing order, so edits only ever happen at or after
// the end of the finished part.
class EditCursor
{
public:
    EditCursor(const QString &source, qsizetype expectedSize)
        : m_source(source)
    {
        m_done.reserve(expectedSize);
    }

    [[nodiscard]] qsizetype length() const
    {
        return m_done.size() + m_pending.size() + (m_source.size() - m_sourcePos);
    }

    [[nodiscard]] QChar at(qsizetype index) const
    {
        if (index < m_done.size()) {
            return m_done.at(index);
        }
        index -= m_done.size();
        if (index < m_pending.size()) {
            return m_pending.at(index);
        }
        return m_source.at(m_sourcePos + index - m_pending.size());
    }

    [[nodiscard]] bool splitsSurrogatePair(qsizetype index) const
    {
        return index > 0 && index < length() && at(index - 1).isHighSurrogate() && at(index).isLowSurrogate();
    }

    void replace(qsizetype start, qsizetype end, const QString &with)
    {
        if (start < m_done.size()) {
            // Not reachable with ordered matches; handled so that odd input never corrupts
            // the text.
            m_pending.prepend(QStringView(m_done).mid(start));
            m_done.truncate(start);
        }
        advance(start - m_done.size());
        drop(end - start);
        m_pending.prepend(with);
    }

    [[nodiscard]] QString finish()
    {
        m_done.append(m_pending);
        m_done.append(QStringView(m_source).mid(m_sourcePos));
        return m_done;
    }

private:
    void advance(qsizetype count)
    {
        const qsizetype fromPending = qMin(count, m_pending.size());
        m_done.append(QStringView(m_pending).left(fromPending));
        m_pending.remove(0, fromPending);
        count -= fromPending;
        m_done.append(QStringView(m_source).mid(m_sourcePos, count));
        m_sourcePos += count;
    }

    void drop(qsizetype count)
    {
        const qsizetype fromPending = qMin(count, m_pending.size());
        m_pending.remove(0, fromPending);
        m_sourcePos += count - fromPending;
    }

    const QString &m_source;
    QString m_done;
    QString m_pending;
    qsizetype m_sourcePos = 0;
};

} // namespace

const char *nameMatchProblem(const NameMatch &match, qsizetype textLength, bool splitsCharacter)
{
    if (!match.participated()) {
        return "the match holds no name";
    }
    if (match.end < match.start || match.end > textLength) {
        return "its range lies outside the text";
    }
    if (splitsCharacter) {
        return "its range splits a character";
    }
    return nullptr;
}

void logSkippedNameMatch(const NameMatch &match, const char *problem)
{
    // Offsets only: the text itself may be exactly what must not be written anywhere.
    qCInfo(lcPrivacy, "Name redaction skipped a match at %d-%d: %s", int(match.start), int(match.end), problem);
}

QString replaceNameMatches(const QString &text, const NameMatches &matches, const QString &replaceWith)
{
    if (matches.empty()) {
        return text;
    }
    EditCursor cursor(text, text.size() + qsizetype(matches.size()) * replaceWith.size());
    for (const NameMatch &match : matches) {
        const qsizetype length = cursor.length();
        const bool inside = match.participated() && match.end >= match.start && match.end <= length;
        const bool splits
            = inside && (cursor.splitsSurrogatePair(match.start) || cursor.splitsSurrogatePair(match.end));
        if (const char *problem = nameMatchProblem(match, length, splits)) {
            logSkippedNameMatch(match, problem);
            continue;
        }
        cursor.replace(match.start, match.end, replaceWith);
    }
    return cursor.finish();
}

} // namespace zentrik
