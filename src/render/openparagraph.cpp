#include "render/openparagraph.h"

#include "render/linetext.h"
#include "render/paragraphparse.h"
#include "render/richtextwriter.h"

namespace zentrik {

namespace {

// Live text longer than this is worth freezing; a failed attempt waits for this much more.
constexpr qsizetype freezeLength = 96;
constexpr qsizetype freezeRetry = 48;

} // namespace

OpenParagraph::OpenParagraph(qsizetype liveStart, qsizetype lineStart, qsizetype end, Target target)
    : m_lineStart(lineStart)
    , m_checked(end)
    , m_liveStart(liveStart)
    , m_target(target)
{ }

std::optional<OpenParagraph> OpenParagraph::openTopLevel(
    QStringView text, qsizetype paragraphStart, qsizetype lineStart, qsizetype end)
{
    // A byte order mark would be dropped if the paragraph were parsed on its own.
    if (paragraphStart < 0 || paragraphStart > lineStart || lineStart >= end || text.at(paragraphStart) == QChar(0xfeff)
        || !LineText::roleIsFixed(text.sliced(lineStart, end - lineStart))) {
        return std::nullopt;
    }
    return OpenParagraph(paragraphStart, lineStart, end, Target::BlockText);
}

std::optional<OpenParagraph> OpenParagraph::openNested(
    QStringView text, qsizetype tailStart, qsizetype lineStart, qsizetype end, Target target)
{
    if (tailStart < 0 || tailStart > lineStart || lineStart >= end || text.at(tailStart) == QChar(0xfeff)
        || !LineText::roleIsFixed(text.sliced(lineStart, end - lineStart))) {
        return std::nullopt;
    }
    const qsizetype point = freezePoint(text, tailStart, lineStart, end);
    if (point < 0) {
        return std::nullopt;
    }
    std::optional<ParagraphParse::Split> split = ParagraphParse::splitBlock(text, tailStart, point, target);
    if (!split) {
        return std::nullopt;
    }
    OpenParagraph open(point, lineStart, end, target);
    open.m_head = std::move(split->head);
    open.m_tail = std::move(split->tail);
    return open;
}

std::optional<OpenParagraph> OpenParagraph::openLine(
    QStringView text, qsizetype lineStart, qsizetype contentStart, qsizetype end, Target target, QString &richText)
{
    if (contentStart < lineStart || contentStart + 1 >= end || !LineText::startsText(text.sliced(contentStart))
        || !LineText::roleIsFixed(text.sliced(lineStart, end - lineStart))) {
        return std::nullopt;
    }
    for (qsizetype at = contentStart; at < end; ++at) {
        if (text.at(at) == QLatin1Char('\n') || text.at(at) == QLatin1Char('\r')) {
            return std::nullopt;
        }
    }
    OpenParagraph open(contentStart, lineStart, contentStart, target);
    open.m_liveEnd = contentStart;
    open.m_liveClean = true;
    if (open.canAppendPlainly(text, end)) {
        open.appendPlainly(text, end);
    } else {
        qsizetype content = end;
        while (content > contentStart && LineText::isSpaceOrTab(text.at(content - 1))) {
            --content;
        }
        if (!ParagraphParse::renderAlone(text, contentStart, content, end, open.m_live, open.m_liveClean)) {
            return std::nullopt;
        }
        open.m_liveSpace = text.sliced(content, end - content).toString();
        open.m_liveEnd = end;
    }
    open.m_checked = end;
    richText = open.m_live;
    open.m_changedFrom = open.m_live.size();
    return open;
}

// The start of the last word on the unfinished line that begins with a letter after white
// space, past `from`; -1 when there is none. Parsed on its own, a live part starting there
// still starts a paragraph, and its first delimiter sees the same neighbours.
qsizetype OpenParagraph::freezePoint(QStringView text, qsizetype from, qsizetype lineStart, qsizetype end)
{
    const qsizetype lowest = qMax(from, lineStart) + 1;
    for (qsizetype point = end - 1; point >= lowest; --point) {
        if (LineText::isSpaceOrTab(text.at(point - 1)) && text.at(point).isLetter()) {
            return point;
        }
    }
    return -1;
}

std::optional<qsizetype> OpenParagraph::endLine(QStringView text, qsizetype end, QString &rich)
{
    qsizetype lineEnd = m_checked;
    while (lineEnd < end && text.at(lineEnd) != QLatin1Char('\n') && text.at(lineEnd) != QLatin1Char('\r')) {
        ++lineEnd;
    }
    // A "\r" that ends the text may be the first half of "\r\n".
    if (lineEnd >= end || (text.at(lineEnd) == QLatin1Char('\r') && lineEnd + 1 >= end)) {
        return std::nullopt;
    }
    const qsizetype next = text.sliced(lineEnd).startsWith(QLatin1String("\r\n")) ? lineEnd + 2 : lineEnd + 1;
    // The end of a paragraph drops trailing white space and a hard break, as a parse of the
    // line on its own does.
    if (!extend(text, lineEnd, rich)) {
        return std::nullopt;
    }
    return next;
}

bool OpenParagraph::extend(QStringView text, qsizetype end, QString &rich)
{
    for (qsizetype at = m_checked; at < end; ++at) {
        if (text.at(at) == QLatin1Char('\n') || text.at(at) == QLatin1Char('\r')) {
            return false;
        }
    }
    m_checked = end;
    freezeAtWord(text, end);
    if (canAppendPlainly(text, end)) {
        appendPlainly(text, end);
    } else {
        qsizetype content = end;
        while (content > m_liveStart && LineText::isSpaceOrTab(text.at(content - 1))) {
            --content;
        }
        // Rendered into the buffer the text before last went to, then swapped in.
        QString &parsed = m_previousLive;
        bool clean = false;
        if (!ParagraphParse::renderAlone(text, m_liveStart, content, end, parsed, clean)) {
            return false;
        }
        qsizetype same = 0;
        const qsizetype shorter = qMin(parsed.size(), m_live.size());
        while (same < shorter && parsed.at(same) == m_live.at(same)) {
            ++same;
        }
        changedFrom(m_head.size() + same);
        m_live.swap(parsed);
        m_liveSpace = text.sliced(content, end - content).toString();
        m_liveEnd = end;
        m_liveClean = clean;
    }
    // Rewrite only from where the text changed: usually it just grew at the end.
    const qsizetype shownLength = m_head.size() + m_live.size();
    const qsizetype keep = qMin(m_changedFrom, rich.size() - m_tail.size());
    if (keep < 0 || !rich.endsWith(m_tail)) {
        rich.clear();
        rich.reserve(shownLength + m_tail.size());
        rich += m_head;
        rich += m_live;
    } else {
        rich.truncate(keep);
        if (keep < m_head.size()) {
            rich += QStringView(m_head).sliced(keep);
            rich += m_live;
        } else {
            rich += QStringView(m_live).sliced(qMin(keep - m_head.size(), m_live.size()));
        }
    }
    rich += m_tail;
    m_changedFrom = shownLength;
    tryFreeze(text, end);
    return true;
}

void OpenParagraph::appendPlainly(QStringView text, qsizetype end)
{
    qsizetype content = end;
    while (content > m_liveEnd && LineText::isSpaceOrTab(text.at(content - 1))) {
        --content;
    }
    if (content > m_liveEnd) {
        changedFrom(m_head.size() + m_live.size());
        // The white space held back before shows now that text follows it.
        m_live += m_liveSpace;
        m_liveSpace.truncate(0);
        RichTextWriter::appendEscaped(m_live, text.sliced(m_liveEnd, content - m_liveEnd));
    }
    m_liveSpace += text.sliced(content, end - content);
    m_liveEnd = end;
}

// When everything rendered so far is clean, the first word of the new text that starts
// with a letter after white space is a point to freeze at for free, provided the text up
// to it adds only plain characters: the rich text before it is already known.
void OpenParagraph::freezeAtWord(QStringView text, qsizetype end)
{
    if (m_liveEnd < m_liveStart || !m_liveClean) {
        return;
    }
    qsizetype point = -1;
    for (qsizetype at = qMax(m_liveEnd, m_lineStart + 1); at < end; ++at) {
        if (LineText::isSpaceOrTab(text.at(at - 1)) && text.at(at).isLetter()) {
            point = at;
        } else if (LineText::opensOrEscapes(text.at(at))) {
            break;
        }
    }
    if (point < 0 || !canAppendPlainly(text, point)) {
        return;
    }
    appendPlainly(text, point);
    changedFrom(m_head.size() + m_live.size());
    m_head += m_live;
    m_head += m_liveSpace;
    m_live.truncate(0);
    m_liveSpace.truncate(0);
    m_liveStart = point;
    m_nextFreeze = 0;
}

// True when the new text can only add plain characters to the live part's rich text: it
// holds nothing that opens, closes or escapes anything, and it cannot join the word before
// it into an address, an entity or a closing delimiter.
bool OpenParagraph::canAppendPlainly(QStringView text, qsizetype end) const
{
    if (m_liveEnd < m_liveStart || m_liveEnd > end) {
        return false;
    }
    // The word is cut where cmark's address extension ends an address: at a blank, a tab or
    // a line end only. Unicode's wider idea of white space (form feed, no-break space, ...)
    // would start the word inside an address such as "ftp://a\fb" and miss its scheme.
    // Text after blanks still changes the word before them: "www." at the end of the
    // paragraph is no address, yet with anything after it, past any number of blanks, it is.
    qsizetype wordStart = m_liveEnd;
    while (wordStart > m_liveStart && LineText::isSpaceOrTab(text.at(wordStart - 1))) {
        --wordStart;
    }
    while (wordStart > m_liveStart && !LineText::isSpaceOrTab(text.at(wordStart - 1))
        && text.at(wordStart - 1) != QLatin1Char('\n') && text.at(wordStart - 1) != QLatin1Char('\r')) {
        --wordStart;
    }
    if (m_liveEnd > m_liveStart) {
        switch (text.at(m_liveEnd - 1).unicode()) {
        case '*':
        case '_':
        case '~':
        case '`':
        case ']':
        case '!':
        case '\\':
            return false;
        default:
            break;
        }
    }
    for (qsizetype at = wordStart; at < end; ++at) {
        const QChar c = text.at(at);
        // "www." starts an address; the autolink extension looks for it in any case.
        if ((c == QLatin1Char('w') || c == QLatin1Char('W')) && at + 2 < end
            && text.at(at + 1).toLower() == QLatin1Char('w') && text.at(at + 2).toLower() == QLatin1Char('w')) {
            return false;
        }
        if (c.isSurrogate() || c.isNull()) {
            if (!(c.isHighSurrogate() && at + 1 < end && text.at(at + 1).isLowSurrogate())) {
                return false;
            }
            ++at;
            continue;
        }
        switch (c.unicode()) {
        case '@':
        case '&':
            return false;
        case ':':
            // Only a scheme such as "https" right before it makes an address of what follows.
            if (LineText::endsWithScheme(text.sliced(wordStart, at - wordStart))) {
                return false;
            }
            break;
        case ')':
        case ']':
        case '>':
            // These close only what an unmatched "(", "[" or "<" opened; a clean live part
            // has none.
            if (at >= m_liveEnd && !m_liveClean) {
                return false;
            }
            break;
        case '*':
        case '_':
        case '~':
        case '`':
        case '[':
        case '<':
        case '\\':
            if (at >= m_liveEnd) {
                return false;
            }
            break;
        default:
            break;
        }
    }
    return true;
}

// Moves the start of the live part to the last word of the line when everything before
// that word has closed.
void OpenParagraph::tryFreeze(QStringView text, qsizetype end)
{
    if (end - m_liveStart < freezeLength || end < m_nextFreeze) {
        return;
    }
    const qsizetype point = freezePoint(text, m_liveStart, m_lineStart, end);
    if (point < 0) {
        m_nextFreeze = end + freezeRetry;
        return;
    }
    QString frozen;
    if (!ParagraphParse::frozenText(text, m_liveStart, point, frozen)) {
        m_nextFreeze = end + freezeRetry;
        return;
    }
    // Nothing before the point reads differently for what follows, so the live part's rich
    // text begins with the frozen part's.
    if (m_liveEnd >= 0 && m_live.startsWith(frozen)) {
        m_live.remove(0, frozen.size());
    } else {
        changedFrom(m_head.size());
        m_liveEnd = -1;
    }
    m_liveClean = false;
    m_head += frozen;
    m_liveStart = point;
    m_nextFreeze = 0;
}

} // namespace zentrik
