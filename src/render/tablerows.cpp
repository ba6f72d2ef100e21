#include "render/tablerows.h"

#include "render/cmarkdocument.h"
#include "render/richtextwriter.h"

namespace zentrik {

namespace {

bool isRowCharacter(QChar c)
{
    // U+FEFF is left to cmark: whether it is kept depends on where it stands.
    return c != QLatin1Char('\\') && c.unicode() >= 0x20 && c.unicode() != 0xfeff && c.unicode() != 0x7f;
}

bool hasPairedSurrogates(QStringView text)
{
    for (qsizetype at = 0; at < text.size(); ++at) {
        if (text.at(at).isHighSurrogate() && at + 1 < text.size() && text.at(at + 1).isLowSurrogate()) {
            ++at;
        } else if (text.at(at).isSurrogate()) {
            return false;
        }
    }
    return true;
}

bool hasLetterOrDigit(QStringView text)
{
    for (const QChar c : text) {
        if (c.isLetterOrNumber()) {
            return true;
        }
    }
    return false;
}

QStringView trimmedSpaces(QStringView text)
{
    qsizetype from = 0;
    qsizetype to = text.size();
    while (from < to && text.at(from) == QLatin1Char(' ')) {
        ++from;
    }
    while (to > from && text.at(to - 1) == QLatin1Char(' ')) {
        --to;
    }
    return text.sliced(from, to - from);
}

qsizetype runLength(QStringView text, QChar c)
{
    qsizetype run = 0;
    while (run < text.size() && text.at(run) == c) {
        ++run;
    }
    return run;
}

} // namespace

bool TableRows::isParagraphText(QStringView cell)
{
    if (cell.isEmpty() || cell.front() == QLatin1Char(' ')) {
        return false;
    }
    const QChar first = cell.front();
    // Only ASCII punctuation, digits and white space open blocks.
    if (first.unicode() >= 0x80 || first.isLetter()) {
        return true;
    }
    if (first.unicode() >= '0' && first.unicode() <= '9') {
        // "12." and "3)" begin a numbered list.
        qsizetype digits = 0;
        while (digits < cell.size() && cell.at(digits).unicode() >= '0' && cell.at(digits).unicode() <= '9') {
            ++digits;
        }
        return digits == cell.size() || (cell.at(digits) != QLatin1Char('.') && cell.at(digits) != QLatin1Char(')'));
    }
    switch (first.unicode()) {
    case '`':
    case '~':
        // Three or more open a fence.
        return runLength(cell, first) < 3;
    case '*':
    case '_':
        // "* " begins an item; a line of these and spaces alone is a rule.
        return cell.size() >= 2 && cell.at(1) != QLatin1Char(' ') && hasLetterOrDigit(cell);
    case '"':
    case '\'':
    case '(':
        return true;
    default:
        return false;
    }
}

std::optional<TableRows::TailLines> TableRows::splitTail(QStringView tail)
{
    TailLines split;
    for (qsizetype at = 0; at < tail.size(); ++at) {
        if (tail.at(at) == QLatin1Char('\r')) {
            return std::nullopt;
        }
        if (tail.at(at) == QLatin1Char('\n')) {
            split.lines.append(tail.sliced(split.lastStart, at - split.lastStart));
            split.lastStart = at + 1;
        }
    }
    split.rowBegun = split.lastStart < tail.size();
    if (split.rowBegun) {
        split.lines.append(tail.sliced(split.lastStart));
    }
    if (split.lines.isEmpty()) {
        return std::nullopt;
    }
    return split;
}

std::optional<QList<QStringList>> TableRows::render(const QList<QStringView> &lines, qsizetype columns)
{
    if (columns < 1) {
        return std::nullopt;
    }
    QList<QStringList> rows;
    rows.reserve(lines.size());
    // Where each paragraph's cell goes, in order.
    QList<std::pair<qsizetype, qsizetype>> places;
    QString paragraphs;
    for (const QStringView line : lines) {
        // "|" followed by spaces alone is no row but a paragraph.
        if (line.size() < 2 || line.front() != QLatin1Char('|') || trimmedSpaces(line.sliced(1)).isEmpty()
            || !hasPairedSurrogates(line)) {
            return std::nullopt;
        }
        for (const QChar c : line) {
            if (!isRowCharacter(c)) {
                return std::nullopt;
            }
        }
        // Cells past the header's count are dropped and missing ones are empty.
        QStringList cells(columns);
        qsizetype column = 0;
        for (const QStringView part : line.sliced(1).tokenize(QLatin1Char('|'))) {
            if (column >= columns) {
                break;
            }
            const QStringView cell = trimmedSpaces(part);
            if (!cell.isEmpty()) {
                if (!isParagraphText(cell)) {
                    return std::nullopt;
                }
                if (!paragraphs.isEmpty()) {
                    paragraphs += QLatin1String("\n\n");
                }
                paragraphs += cell;
                places.append({ rows.size(), column });
            }
            ++column;
        }
        rows.append(cells);
    }
    if (places.isEmpty()) {
        return rows;
    }
    const CmarkDocument document(paragraphs.toUtf8(), CmarkDocument::Extensions::Inline);
    qsizetype index = 0;
    for (cmark_node *node = cmark_node_first_child(document.root()); node != nullptr; node = cmark_node_next(node)) {
        if (index >= places.size() || cmark_node_get_type(node) != CMARK_NODE_PARAGRAPH) {
            return std::nullopt;
        }
        const auto [row, column] = places.at(index++);
        rows[row][column] = RichTextWriter::inlines(node);
    }
    if (index != places.size()) {
        return std::nullopt;
    }
    return rows;
}

} // namespace zentrik
