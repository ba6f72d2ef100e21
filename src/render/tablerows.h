#pragma once

#include <QList>
#include <QStringList>
#include <QStringView>

#include <optional>

namespace zentrik {

// The body rows of a table still being streamed, rendered without the table around them.
// A row's cells are inline text split at its pipes, so the cells of the new rows parse at
// once as a run of paragraphs: far cheaper than parsing the rows again behind the table's
// header and delimiter lines, which makes cmark set up a table for every piece.
class TableRows
{
public:
    // The cells of the rows on these lines, `columns` to a row, as rich text. Nothing when
    // a line is not a row that begins with "|", or holds what only a parse of the table can
    // judge: a backslash (which may escape a pipe), a tab or another control character, or a
    // cell that would not be a plain paragraph on its own.
    [[nodiscard]] static std::optional<QList<QStringList>> render(const QList<QStringView> &lines, qsizetype columns);

    // The lines of a table's tail: those that ended, then the row being written when it has
    // begun (rowBegun), which starts at lastStart. Nothing when the tail holds no line yet,
    // or a carriage return, whose line break only cmark judges.
    struct TailLines
    {
        QList<QStringView> lines;
        qsizetype lastStart = 0;
        bool rowBegun = false;
    };
    [[nodiscard]] static std::optional<TailLines> splitTail(QStringView tail);

    // True when the text, alone on a line, makes a paragraph whatever it ends with: it
    // cannot open a heading, list, quote, fence, rule, HTML block or link definition.
    [[nodiscard]] static bool isParagraphText(QStringView cell);
};

} // namespace zentrik
