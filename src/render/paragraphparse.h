#pragma once

#include "render/openparagraph.h"

#include <QString>
#include <QStringView>

#include <optional>

namespace zentrik {

// The parses behind an OpenParagraph: a paragraph's text rendered on its own, and the rich
// text of the text before a point, found by parsing it with a marker at that point. Each
// tries SimpleInlines first and parses with cmark only when that declines.
class ParagraphParse
{
public:
    // The rich text of text[start, end) parsed as a paragraph of its own, less its trailing
    // white space (from content on), and whether it is clean: nothing in it is left waiting
    // for a partner, so nothing that follows can change how it reads. False when the text is
    // no lone paragraph.
    [[nodiscard]] static bool renderAlone(
        QStringView text, qsizetype start, qsizetype content, qsizetype end, QString &rich, bool &clean);

    // The rich text before and after `point` in the block that text[from, point) parses into,
    // at the place of its last paragraph (`target` of the block), when that paragraph is
    // clean up to the point.
    struct Split
    {
        QString head;
        QString tail;
    };
    [[nodiscard]] static std::optional<Split> splitBlock(
        QStringView text, qsizetype from, qsizetype point, OpenParagraph::Target target);

    // The rich text of the paragraph text[from, point) when nothing in it is left open, so
    // that whatever follows the point cannot change it.
    [[nodiscard]] static bool frozenText(QStringView text, qsizetype from, qsizetype point, QString &frozen);
};

} // namespace zentrik
