#include "render/linetext.h"

#include <QString>

namespace zentrik {

namespace {

bool hasLetterOrDigit(QStringView text)
{
    for (const QChar c : text) {
        if (c.isLetterOrNumber()) {
            return true;
        }
    }
    return false;
}

// Past a list or quote marker, if the line starts with one.
qsizetype skipContainerMarker(QStringView line, qsizetype at)
{
    const QChar c = line.at(at);
    if (c == QLatin1Char('>')) {
        return at + 1;
    }
    if ((c == QLatin1Char('-') || c == QLatin1Char('*') || c == QLatin1Char('+')) && at + 1 < line.size()
        && LineText::isSpaceOrTab(line.at(at + 1))) {
        return at + 2;
    }
    qsizetype digits = at;
    while (digits < line.size() && digits - at < 9 && line.at(digits).isDigit()) {
        ++digits;
    }
    if (digits > at && digits + 1 < line.size()
        && (line.at(digits) == QLatin1Char('.') || line.at(digits) == QLatin1Char(')'))
        && LineText::isSpaceOrTab(line.at(digits + 1))) {
        return digits + 2;
    }
    return at;
}

bool isContainerPrefix(QChar c)
{
    return c == QLatin1Char(' ') || c == QLatin1Char('\t') || c == QLatin1Char('>') || c == QLatin1Char('-')
        || c == QLatin1Char('+') || c == QLatin1Char('*') || c == QLatin1Char('.') || c == QLatin1Char(')')
        || c.isDigit();
}

} // namespace

bool LineText::isSpaceOrTab(QChar c)
{
    return c == QLatin1Char(' ') || c == QLatin1Char('\t');
}

bool LineText::roleIsFixed(QStringView line)
{
    qsizetype at = 0;
    while (true) {
        while (at < line.size() && isSpaceOrTab(line.at(at))) {
            ++at;
        }
        if (at >= line.size()) {
            return false;
        }
        const qsizetype content = skipContainerMarker(line, at);
        if (content == at) {
            break;
        }
        at = content;
    }
    const QChar first = line.at(at);
    if (first.isLetter()) {
        return true;
    }
    qsizetype run = at;
    while (run < line.size() && line.at(run) == first) {
        ++run;
    }
    if (run >= line.size()) {
        return false;
    }
    const QChar next = line.at(run);
    switch (first.unicode()) {
    case '#': // a heading needs at most six marks and then a space
        return run - at > 6 || !LineText::isSpaceOrTab(next);
    case '`':
    case '~': // a fence needs three
        return run - at < 3;
    case '-':
    case '*':
    case '+':
    case '_':
    case '=':
    case '|':
    case ':': // rules, underlines and table delimiter rows hold no letters
        return hasLetterOrDigit(line.sliced(at));
    case '<':
        return false;
    case '[': // "[ ] " and "[x] " make a task of a list item
        return line.size() - at >= 4;
    default:
        break;
    }
    if (first.isDigit()) {
        // "12" may still become "12. item"; "2024 was" stays text.
        qsizetype digits = at;
        while (digits < line.size() && line.at(digits).isDigit()) {
            ++digits;
        }
        return digits < line.size() && line.at(digits) != QLatin1Char('.') && line.at(digits) != QLatin1Char(')');
    }
    return true;
}

// True when a line whose content begins so (after its list marker, if any) is paragraph
// text, whatever follows: a letter, emphasis or a code span, a quotation mark or a
// parenthesis. Anything else might open a nested block or make a task of a list item.
bool LineText::startsText(QStringView content)
{
    if (content.size() < 2) {
        return false;
    }
    const QChar first = content.at(0);
    const QChar second = content.at(1);
    switch (first.unicode()) {
    case '*':
    case '_':
        return !LineText::isSpaceOrTab(second);
    case '`':
        return second != QLatin1Char('`');
    case '"':
    case '\'':
    case '(':
        return true;
    default:
        return first.isLetter();
    }
}

// Characters that open a construct, or escape or name one, so text after them must be
// parsed rather than appended.
bool LineText::opensOrEscapes(QChar c)
{
    switch (c.unicode()) {
    case '*':
    case '_':
    case '~':
    case '`':
    case '[':
    case '<':
    case '\\':
    case '@':
    case '&':
        return true;
    default:
        return false;
    }
}

// True when the letters at the end of the text name a scheme that cmark-gfm turns into a
// link when "://" follows it.
bool LineText::endsWithScheme(QStringView text)
{
    qsizetype start = text.size();
    while (start > 0 && text.at(start - 1).isLetter()) {
        --start;
    }
    const QStringView letters = text.sliced(start);
    for (const char *scheme : { "http", "https", "ftp", "mailto", "xmpp" }) {
        if (letters.endsWith(QLatin1StringView(scheme), Qt::CaseInsensitive)) {
            return true;
        }
    }
    return false;
}

bool LineText::mayDefineReference(QStringView text, qsizetype from)
{
    // A definition is "[label]:" at the start of a paragraph, and a label holds at most 999
    // characters.
    constexpr qsizetype longestLabel = 1001;
    for (qsizetype at = from; at + 1 < text.size(); ++at) {
        if (text.at(at) != QLatin1Char(']') || text.at(at + 1) != QLatin1Char(':')) {
            continue;
        }
        for (qsizetype open = at - 1; open >= 0 && open >= at - longestLabel; --open) {
            if (text.at(open) != QLatin1Char('[')) {
                continue;
            }
            qsizetype lineStart = open;
            while (lineStart > 0 && isContainerPrefix(text.at(lineStart - 1))) {
                --lineStart;
            }
            if (lineStart == 0 || text.at(lineStart - 1) == QLatin1Char('\n')
                || text.at(lineStart - 1) == QLatin1Char('\r')) {
                return true;
            }
        }
    }
    return false;
}

} // namespace zentrik
