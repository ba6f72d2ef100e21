#include "render/renderbudget.h"

namespace zentrik::renderbudget {

namespace {

// The lines of a text as cmark counts them ("\n", "\r\n" or a lone "\r" ends one), with what
// parts() and fitsOneParse() need to know of each.
class Lines
{
public:
    explicit Lines(QByteArrayView text)
        : m_text(text)
    { }

    // Moves to the next line; false at the end of the text.
    bool next()
    {
        if (m_end >= m_text.size()) {
            return false;
        }
        m_start = m_end;
        qsizetype at = m_start;
        m_ats = 0;
        m_blank = true;
        while (at < m_text.size() && m_text[at] != '\n' && m_text[at] != '\r') {
            const char c = m_text[at];
            m_ats += c == '@' ? 1 : 0;
            m_blank = m_blank && (c == ' ' || c == '\t');
            ++at;
        }
        m_contentEnd = at;
        if (at < m_text.size()) {
            at += (m_text[at] == '\r' && at + 1 < m_text.size() && m_text[at + 1] == '\n') ? 2 : 1;
        }
        m_end = at;
        return true;
    }

    [[nodiscard]] qsizetype end() const { return m_end; }
    [[nodiscard]] qsizetype length() const { return m_end - m_start; }
    [[nodiscard]] qint64 ats() const { return m_ats; }
    [[nodiscard]] bool blank() const { return m_blank; }
    [[nodiscard]] QByteArrayView content() const { return m_text.sliced(m_start, m_contentEnd - m_start); }

private:
    QByteArrayView m_text;
    qsizetype m_start = 0;
    qsizetype m_contentEnd = 0;
    qsizetype m_end = 0;
    qint64 m_ats = 0;
    bool m_blank = true;
};

// Follows the code fences of a text line by line: three or more back-ticks or tildes after at
// most three spaces open one, and a run of the same character at least as long closes it.
class FenceTracker
{
public:
    void feed(QByteArrayView line)
    {
        qsizetype at = 0;
        while (at < line.size() && at < 3 && line[at] == ' ') {
            ++at;
        }
        if (at >= line.size() || (line[at] != '`' && line[at] != '~')) {
            return;
        }
        const char c = line[at];
        qsizetype run = 0;
        while (at + run < line.size() && line[at + run] == c) {
            ++run;
        }
        if (run < 3) {
            return;
        }
        if (m_length == 0) {
            m_char = c;
            m_length = run;
        } else if (c == m_char && run >= m_length) {
            m_length = 0;
        }
    }

    [[nodiscard]] bool inside() const { return m_length > 0; }

private:
    char m_char = 0;
    qsizetype m_length = 0;
};

} // namespace

bool fitsOneParse(QByteArrayView utf8)
{
    if (utf8.size() > maxParseBytes) {
        return false;
    }
    qint64 work = 0;
    qint64 runAts = 0;
    qint64 runLength = 0;
    Lines lines(utf8);
    while (lines.next()) {
        if (lines.blank()) {
            work += runAts * runLength;
            runAts = 0;
            runLength = 0;
            continue;
        }
        runAts += lines.ats();
        runLength += lines.length();
    }
    work += runAts * runLength;
    return work <= maxAddressWork;
}

QList<QByteArrayView> parts(QByteArrayView utf8)
{
    // Runs of lines end at blank lines outside fences. Runs join the part being built while
    // it stays within partBytes and the address budget; a run that fits nowhere is a part
    // of its own, so one costly paragraph never takes the replies around it into plain text.
    QList<QByteArrayView> result;
    qsizetype partStart = 0;
    qint64 partWork = 0;
    qsizetype runStart = 0;
    qint64 runAts = 0;
    FenceTracker fences;
    Lines lines(utf8);
    const auto endRun = [&](qsizetype runEnd) {
        const qsizetype runLength = runEnd - runStart;
        const qint64 runWork = runAts * runLength;
        const bool joins = runEnd - partStart <= partBytes && partWork + runWork <= maxAddressWork;
        if (!joins && runStart > partStart) {
            result.append(utf8.sliced(partStart, runStart - partStart));
            partStart = runStart;
            partWork = 0;
        }
        partWork += runWork;
        runStart = runEnd;
        runAts = 0;
    };
    while (lines.next()) {
        fences.feed(lines.content());
        runAts += lines.ats();
        if (lines.blank() && !fences.inside()) {
            endRun(lines.end());
        }
    }
    if (runStart < utf8.size()) {
        endRun(utf8.size());
    }
    if (partStart < utf8.size() || result.isEmpty()) {
        result.append(utf8.sliced(partStart));
    }
    return result;
}

} // namespace zentrik::renderbudget
