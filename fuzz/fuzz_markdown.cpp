// The Markdown renderer on arbitrary replies: display blocks, their source spans and HTML.
// Checks what the views rely on: every table row has a cell per header column, headings
// have a level from 1 to 6, and there is one source span per block. (The lines of the spans
// are cmark's own and not checked for order: cmark gives a paragraph that a table split off
// line 0, and lets a setext heading end on the line of the block after it.)

#include "fuzztarget.h"
#include "text.h"

#include "render/markdownrenderer.h"

using zentrik::MarkdownBlock;
using zentrik::MarkdownRenderer;

ZENTRIK_FUZZ_TARGET(markdown)
{
    const QString text = zentrik::fuzz::textOf(data, size);
    const QList<MarkdownBlock> blocks = MarkdownRenderer::render(text);

    for (const MarkdownBlock &block : blocks) {
        if (block.type == MarkdownBlock::Type::Heading) {
            FUZZ_CHECK(block.level >= 1 && block.level <= 6, "a heading level outside 1 to 6");
        }
        if (block.type == MarkdownBlock::Type::Table) {
            FUZZ_CHECK(block.columnAlignments.size() == block.tableHeader.size(), "an alignment per column");
            for (const QStringList &row : block.tableRows) {
                FUZZ_CHECK(row.size() == block.tableHeader.size(), "a table row with a different number of cells");
            }
        }
        if (block.type == MarkdownBlock::Type::BulletList || block.type == MarkdownBlock::Type::OrderedList) {
            FUZZ_CHECK(!block.items.isEmpty(), "a list without items");
            for (const auto &item : block.items) {
                FUZZ_CHECK(item.depth >= 0, "a list item at a negative depth");
            }
        }
    }

    QList<MarkdownBlock> again;
    QList<MarkdownRenderer::SourceSpan> spans;
    MarkdownRenderer::renderInto(text.toUtf8(), again, &spans);
    FUZZ_CHECK(again == blocks, "rendering the UTF-8 of a reply gave other blocks");
    FUZZ_CHECK(spans.size() == blocks.size(), "not one source span per block");

    [[maybe_unused]] const QString html = MarkdownRenderer::toHtml(text);
    return 0;
}
