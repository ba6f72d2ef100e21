#include "render/listmarker.h"

#include "render/linetext.h"

namespace zentrik {

namespace {

// cmark reads at most nine digits as an item's number.
constexpr qsizetype maxNumberDigits = 9;

qsizetype numberLength(QStringView line)
{
    qsizetype at = 0;
    while (at < line.size() && at < maxNumberDigits && line.at(at).isDigit()) {
        ++at;
    }
    return at;
}

} // namespace

std::optional<ListMarker> ListMarker::of(QChar first, bool parenDelimiter)
{
    if (first == QLatin1Char('-') || first == QLatin1Char('*') || first == QLatin1Char('+')) {
        return ListMarker(first, false);
    }
    if (first.isDigit()) {
        return ListMarker(QChar(), parenDelimiter);
    }
    return std::nullopt;
}

bool ListMarker::startsItem(QStringView text) const
{
    qsizetype lineEnd = 0;
    while (lineEnd < text.size() && text.at(lineEnd) != QLatin1Char('\n') && text.at(lineEnd) != QLatin1Char('\r')) {
        ++lineEnd;
    }
    const QStringView line = text.first(lineEnd);
    qsizetype at = 0;
    if (m_bullet.isNull()) {
        at = numberLength(line);
        if (at == 0 || at >= line.size() || line.at(at) != (m_parenDelimiter ? QLatin1Char(')') : QLatin1Char('.'))) {
            return false;
        }
    } else if (line.isEmpty() || line.at(0) != m_bullet) {
        return false;
    }
    ++at;
    return at < line.size() && (line.at(at) == QLatin1Char(' ') || line.at(at) == QLatin1Char('\t'))
        && LineText::roleIsFixed(line);
}

qsizetype ListMarker::contentStart(QStringView line)
{
    const qsizetype markerEnd = numberLength(line) + 1; // the bullet or the number's delimiter
    qsizetype spaces = 0;
    while (markerEnd + spaces < line.size() && line.at(markerEnd + spaces) == QLatin1Char(' ')) {
        ++spaces;
    }
    return spaces < 1 || spaces > 4 ? -1 : markerEnd + spaces;
}

} // namespace zentrik
