#pragma once

#include <QChar>
#include <QStringView>

namespace zentrik {

// What a line of a streamed reply, or a run of its text, can still turn into as more text
// follows it.
class LineText
{
public:
    [[nodiscard]] static bool isSpaceOrTab(QChar c);

    // True when whatever is appended to the line, it stays text inside the same list items
    // and quotes. A line such as "#", "-", "12" or "``" may still become a heading, a rule,
    // a list item or a fence. Some settled lines (headings, fences) also answer no, which
    // only costs callers a shortcut.
    [[nodiscard]] static bool roleIsFixed(QStringView line);
    // True when a line whose content (after its list marker, if any) begins so is paragraph
    // text, whatever follows: a letter, emphasis or a code span, a quotation mark or a
    // parenthesis. Anything else might open a nested block or make a task of a list item.
    [[nodiscard]] static bool startsText(QStringView content);
    // Characters that open an inline construct, or escape or name one.
    [[nodiscard]] static bool opensOrEscapes(QChar c);
    // True when the letters at the end of the text name a scheme that the autolink
    // extension turns into a link when "://" follows it.
    [[nodiscard]] static bool endsWithScheme(QStringView text);
    // True when the text from `from` on may complete a link reference definition: "]:"
    // with a "[" opening a line shortly before it. Guessing too often costs only speed.
    [[nodiscard]] static bool mayDefineReference(QStringView text, qsizetype from);
};

} // namespace zentrik
