#include "render/simpleinlines.h"

#include "render/linetext.h"
#include "render/richtextwriter.h"

#include <cstring>

namespace zentrik {

namespace {

// How a delimiter run's neighbour counts when deciding whether the run can open or close.
// The start and end of the text count as white space. Unknown: a character whose class
// is not certain to agree with cmark's Unicode tables, which makes the caller decline.
enum class Neighbour { Space, Punctuation, Other, Unknown };

Neighbour classify(char32_t c)
{
    if (c == ' ' || c == '\t') {
        return Neighbour::Space;
    }
    if (c < 0x80) {
        if ((c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z')) {
            return Neighbour::Other;
        }
        return c > 0x20 && c < 0x7f ? Neighbour::Punctuation : Neighbour::Unknown;
    }
    switch (QChar::category(c)) {
    case QChar::Letter_Uppercase:
    case QChar::Letter_Lowercase:
    case QChar::Letter_Titlecase:
    case QChar::Letter_Modifier:
    case QChar::Letter_Other:
    case QChar::Number_DecimalDigit:
    case QChar::Number_Letter:
    case QChar::Number_Other:
    case QChar::Symbol_Other: // emoji, which are no punctuation
        return Neighbour::Other;
    default:
        return Neighbour::Unknown;
    }
}

Neighbour before(QStringView text, qsizetype at)
{
    if (at == 0) {
        return Neighbour::Space;
    }
    const QChar c = text.at(at - 1);
    if (c.isLowSurrogate() && at >= 2 && text.at(at - 2).isHighSurrogate()) {
        return classify(QChar::surrogateToUcs4(text.at(at - 2), c));
    }
    return c.isSurrogate() ? Neighbour::Unknown : classify(c.unicode());
}

Neighbour after(QStringView text, qsizetype at)
{
    if (at >= text.size()) {
        return Neighbour::Space;
    }
    const QChar c = text.at(at);
    if (c.isHighSurrogate() && at + 1 < text.size() && text.at(at + 1).isLowSurrogate()) {
        return classify(QChar::surrogateToUcs4(c, text.at(at + 1)));
    }
    return c.isSurrogate() ? Neighbour::Unknown : classify(c.unicode());
}

qsizetype runEnd(QStringView text, qsizetype at)
{
    const QChar c = text.at(at);
    qsizetype end = at;
    while (end < text.size() && text.at(end) == c) {
        ++end;
    }
    return end;
}

// True when the text, parsed on its own, can only be a paragraph: it starts with a letter,
// a bracket, a parenthesis or a quotation mark, or with one or two of "*", "`" or "~"
// right before a letter or digit (three would be a fence or a rule, one before a blank an
// item).
bool startsParagraph(QStringView text)
{
    const QChar first = text.front();
    if (first.isLetter() || first == QLatin1Char('[') || first == QLatin1Char('(') || first == QLatin1Char('"')) {
        return true;
    }
    if (first != QLatin1Char('*') && first != QLatin1Char('`') && first != QLatin1Char('~')) {
        return false;
    }
    const qsizetype end = runEnd(text, 0);
    return end <= 2 && end < text.size() && text.at(end).isLetterOrNumber();
}

bool isAddressCharacter(QChar c)
{
    if (c.unicode() >= 0x80) {
        return false;
    }
    const char ascii = char(c.unicode());
    return (ascii >= '0' && ascii <= '9') || (ascii >= 'a' && ascii <= 'z') || (ascii >= 'A' && ascii <= 'Z')
        || std::strchr("-._~:/?#@!$'*+,;=%", ascii) != nullptr;
}

} // namespace

bool SimpleInlines::render(QStringView text, QString &rich, bool &clean)
{
    rich.truncate(0); // keeps the buffer for the next piece
    clean = true;
    if (text.isEmpty() || !startsParagraph(text)) {
        return false;
    }
    qsizetype at = 0;
    while (at < text.size()) {
        const qsizetype plain = plainEnd(text, at);
        RichTextWriter::appendEscaped(rich, text.sliced(at, plain - at));
        at = plain;
        if (at >= text.size()) {
            break;
        }
        switch (text.at(at).unicode()) {
        case '*':
        case '~':
            at = emphasis(text, at, rich, clean);
            break;
        case '`':
            at = codeSpan(text, at, rich, clean);
            break;
        case '[':
            at = link(text, at, rich);
            break;
        default:
            return false;
        }
        if (at < 0) {
            return false;
        }
    }
    return true;
}

// Where the plain text from `from` ends: at the first character that opens, closes, escapes
// or names something, or that may begin an address, or that cmark would not pass on as it
// stands.
qsizetype SimpleInlines::plainEnd(QStringView text, qsizetype from)
{
    const qsizetype size = text.size();
    for (qsizetype at = from; at < size; ++at) {
        const char16_t c = text.at(at).unicode();
        if (c >= 0x80) {
            if (QChar::isHighSurrogate(c) && at + 1 < size && text.at(at + 1).isLowSurrogate()) {
                ++at;
            } else if (QChar::isSurrogate(c) || c == 0xfeff) {
                return at;
            }
            continue;
        }
        switch (c) {
        case '*':
        case '_':
        case '~':
        case '`':
        case '[':
        case ']':
        case '<':
        case '\\':
        case '&':
        case '@':
        case 0x7f:
            return at;
        case '!':
            if (at + 1 < size && text.at(at + 1) == QLatin1Char('[')) {
                return at;
            }
            break;
        case ':':
            if (LineText::endsWithScheme(text.first(at))) {
                return at;
            }
            break;
        case 'w':
        case 'W':
            if (at + 2 < size && text.at(at + 1).toLower() == QLatin1Char('w')
                && text.at(at + 2).toLower() == QLatin1Char('w')) {
                return at;
            }
            break;
        default:
            if (c < 0x20 && c != '\t') {
                return at;
            }
            break;
        }
    }
    return size;
}

// A run of "*" or "~~" at `at`. Closed around plain text by a run of the same length, it
// is emphasis, strong emphasis or strikethrough; unable to open, or left open to the end
// of the text, it is literal. Anything else: -1.
qsizetype SimpleInlines::emphasis(QStringView text, qsizetype at, QString &rich, bool &clean)
{
    const QChar c = text.at(at);
    const qsizetype open = runEnd(text, at);
    const qsizetype length = open - at;
    if (c == QLatin1Char('~') ? length != 2 : length > 2) {
        return -1;
    }
    const Neighbour openBefore = before(text, at);
    const Neighbour openAfter = after(text, open);
    if (openBefore == Neighbour::Unknown || openAfter == Neighbour::Unknown) {
        return -1;
    }
    // Nothing before is left open, so a run that cannot open stays literal.
    const bool canOpen
        = openAfter != Neighbour::Space && (openAfter != Neighbour::Punctuation || openBefore != Neighbour::Other);
    const qsizetype close = canOpen ? plainEnd(text, open) : open;
    if (!canOpen || close >= text.size()) {
        rich += text.sliced(at, length);
        clean = false;
        return open;
    }
    if (text.at(close) != c || runEnd(text, close) - close != length) {
        return -1;
    }
    const Neighbour closeBefore = before(text, close);
    const Neighbour closeAfter = after(text, close + length);
    if (closeBefore == Neighbour::Unknown || closeAfter == Neighbour::Unknown || closeBefore == Neighbour::Space
        || (closeBefore == Neighbour::Punctuation && closeAfter == Neighbour::Other)) {
        return -1;
    }
    const QLatin1StringView tag = c == QLatin1Char('~') ? QLatin1StringView("s")
        : length == 2                                   ? QLatin1StringView("b")
                                                        : QLatin1StringView("i");
    rich += QLatin1Char('<') + tag + QLatin1Char('>');
    RichTextWriter::appendEscaped(rich, text.sliced(open, close - open));
    rich += QLatin1StringView("</") + tag + QLatin1Char('>');
    return close + length;
}

// A run of backticks at `at`: a code span up to the next run of the same length, or,
// without one, literal backticks. -1 for content that cmark would change (a space at
// either end is trimmed, control characters are replaced), for a run too long to open a
// span and for a run left without a partner while more backticks follow it.
qsizetype SimpleInlines::codeSpan(QStringView text, qsizetype at, QString &rich, bool &clean)
{
    const qsizetype open = runEnd(text, at);
    const qsizetype length = open - at;
    // cmark opens no span with a run longer than this.
    constexpr qsizetype longestOpener = 80;
    if (length > longestOpener) {
        return -1;
    }
    qsizetype close = open;
    while (close < text.size()) {
        if (text.at(close) != QLatin1Char('`')) {
            ++close;
            continue;
        }
        const qsizetype end = runEnd(text, close);
        if (end - close == length) {
            break;
        }
        close = end;
    }
    if (close >= text.size()) {
        // cmark remembers where it last saw each length of run while looking for a closer
        // that never came, and later openers trust that memory even after a later search
        // has moved it back: "`` `a```b` ```x```" leaves "```x```" literal. Only the last run of
        // backticks is certain to stay literal.
        if (text.sliced(open).contains(QLatin1Char('`'))) {
            return -1;
        }
        rich += text.sliced(at, length);
        clean = false;
        return open;
    }
    const QStringView code = text.sliced(open, close - open);
    if (code.front() == QLatin1Char(' ') || code.back() == QLatin1Char(' ')) {
        return -1;
    }
    for (qsizetype i = 0; i < code.size(); ++i) {
        const QChar c = code.at(i);
        if (c.unicode() < 0x20 || c.unicode() == 0xfeff
            || (c.isSurrogate() && !(c.isHighSurrogate() && i + 1 < code.size() && code.at(i + 1).isLowSurrogate()))) {
            return -1;
        }
        if (c.isHighSurrogate()) {
            ++i;
        }
    }
    rich += QLatin1StringView("<code>");
    RichTextWriter::appendEscaped(rich, code);
    rich += QLatin1StringView("</code>");
    return close + length;
}

// "[text](address)" at `at`, with plain text and an address of URL characters that need
// neither escaping nor decoding; -1 for anything else.
qsizetype SimpleInlines::link(QStringView text, qsizetype at, QString &rich)
{
    const qsizetype labelEnd = plainEnd(text, at + 1);
    if (labelEnd == at + 1 || labelEnd + 1 >= text.size() || text.at(labelEnd) != QLatin1Char(']')
        || text.at(labelEnd + 1) != QLatin1Char('(')) {
        return -1;
    }
    const qsizetype urlStart = labelEnd + 2;
    qsizetype urlEnd = urlStart;
    while (urlEnd < text.size() && isAddressCharacter(text.at(urlEnd))) {
        ++urlEnd;
    }
    if (urlEnd == urlStart || urlEnd >= text.size() || text.at(urlEnd) != QLatin1Char(')')) {
        return -1;
    }
    const QStringView url = text.sliced(urlStart, urlEnd - urlStart);
    const bool linked = RichTextWriter::isSafeUrl(url.toString());
    if (linked) {
        rich += QLatin1StringView("<a href=\"");
        rich += url;
        rich += QLatin1StringView("\">");
    }
    RichTextWriter::appendEscaped(rich, text.sliced(at + 1, labelEnd - at - 1));
    if (linked) {
        rich += QLatin1StringView("</a>");
    }
    return urlEnd + 1;
}

} // namespace zentrik
