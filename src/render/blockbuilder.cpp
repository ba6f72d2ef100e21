#include "render/blockbuilder.h"

#include "render/richtextwriter.h"

#include <cmark-gfm-core-extensions.h>

#include <array>
#include <vector>

namespace zentrik {

namespace {

QString bulletFor(int depth)
{
    static const std::array<QString, 3> bullets
        = { QStringLiteral("\u2022"), QStringLiteral("\u25e6"), QStringLiteral("\u25aa") };
    return bullets.at(size_t(depth) % bullets.size());
}

QString codeLanguage(cmark_node *node)
{
    const QString info = QString::fromUtf8(cmark_node_get_fence_info(node)).trimmed();
    qsizetype end = 0;
    while (end < info.size() && !info.at(end).isSpace()) {
        ++end;
    }
    return info.left(end);
}

} // namespace

QString BlockBuilder::numberMarker(qint64 number, cmark_delim_type delimiter)
{
    return QString::number(number) + (delimiter == CMARK_PAREN_DELIM ? QLatin1Char(')') : QLatin1Char('.'));
}

MarkdownBlock BlockBuilder::build(cmark_node *node, QList<qsizetype> *itemEntries)
{
    MarkdownBlock block;
    switch (cmark_node_get_type(node)) {
    case CMARK_NODE_PARAGRAPH:
        block.type = MarkdownBlock::Type::Paragraph;
        block.text = RichTextWriter::inlines(node);
        break;
    case CMARK_NODE_HEADING:
        block.type = MarkdownBlock::Type::Heading;
        block.level = cmark_node_get_heading_level(node);
        block.text = RichTextWriter::inlines(node);
        break;
    case CMARK_NODE_THEMATIC_BREAK:
        block.type = MarkdownBlock::Type::Rule;
        break;
    case CMARK_NODE_CODE_BLOCK:
        block.type = MarkdownBlock::Type::Code;
        block.text = RichTextWriter::literal(node);
        if (block.text.endsWith(QLatin1Char('\n'))) {
            block.text.chop(1);
        }
        block.language = codeLanguage(node);
        break;
    case CMARK_NODE_BLOCK_QUOTE:
        block.type = MarkdownBlock::Type::Quote;
        block.text = RichTextWriter::children(node);
        break;
    case CMARK_NODE_LIST:
        block.type = cmark_node_get_list_type(node) == CMARK_ORDERED_LIST ? MarkdownBlock::Type::OrderedList
                                                                          : MarkdownBlock::Type::BulletList;
        appendListItems(block.items, node, 0, itemEntries);
        break;
    default:
        if (RichTextWriter::isType(node, "table")) {
            block.type = MarkdownBlock::Type::Table;
            fillTable(block, node);
        } else {
            // Raw HTML blocks (and anything else cmark may add) are shown as written.
            const std::array<cmark_node *, 1> single = { node };
            block.type = MarkdownBlock::Type::Paragraph;
            block.text = RichTextWriter::blocks(single);
        }
        break;
    }
    return block;
}

void BlockBuilder::appendListItems(
    QList<MarkdownListItem> &items, cmark_node *list, int depth, QList<qsizetype> *itemEntries)
{
    const bool ordered = cmark_node_get_list_type(list) == CMARK_ORDERED_LIST;
    const cmark_delim_type delimiter = cmark_node_get_list_delim(list);
    qint64 number = cmark_node_get_list_start(list);
    for (cmark_node *item = cmark_node_first_child(list); item != nullptr; item = cmark_node_next(item)) {
        if (itemEntries != nullptr) {
            itemEntries->append(items.size());
        }
        MarkdownListItem first;
        first.depth = depth;
        first.marker = ordered ? numberMarker(number++, delimiter) : bulletFor(depth);
        if (RichTextWriter::isType(item, "tasklist")) {
            first.task = cmark_gfm_extensions_get_tasklist_item_checked(item) ? MarkdownListItem::Task::Checked
                                                                              : MarkdownListItem::Task::Unchecked;
        }
        bool emitted = false;
        std::vector<cmark_node *> pending;
        // The item's own content becomes its row; content after a nested list continues
        // the item in a row without a marker.
        const auto flush = [&] {
            if (emitted && pending.empty()) {
                return;
            }
            MarkdownListItem row = emitted ? MarkdownListItem {} : first;
            row.depth = depth;
            row.text = RichTextWriter::blocks(pending);
            items.append(row);
            emitted = true;
            pending.clear();
        };
        for (cmark_node *child = cmark_node_first_child(item); child != nullptr; child = cmark_node_next(child)) {
            if (cmark_node_get_type(child) == CMARK_NODE_LIST) {
                flush();
                appendListItems(items, child, depth + 1);
            } else {
                pending.push_back(child);
            }
        }
        flush();
    }
}

void BlockBuilder::fillTable(MarkdownBlock &block, cmark_node *table)
{
    const int columns = cmark_gfm_extensions_get_table_columns(table);
    const uint8_t *alignments = cmark_gfm_extensions_get_table_alignments(table);
    for (int column = 0; column < columns; ++column) {
        const char alignment = alignments != nullptr ? char(alignments[column]) : '\0';
        block.columnAlignments.append(alignment == 'c' ? int(Qt::AlignHCenter)
                : alignment == 'r'                     ? int(Qt::AlignRight)
                                                       : int(Qt::AlignLeft));
    }
    for (cmark_node *row = cmark_node_first_child(table); row != nullptr; row = cmark_node_next(row)) {
        QStringList cells;
        for (cmark_node *cell = cmark_node_first_child(row); cell != nullptr; cell = cmark_node_next(cell)) {
            cells.append(RichTextWriter::inlines(cell));
        }
        while (cells.size() < columns) {
            cells.append(QString());
        }
        cells.resize(columns);
        if (cmark_gfm_extensions_get_table_row_is_header(row) != 0) {
            block.tableHeader = cells;
        } else {
            block.tableRows.append(cells);
        }
    }
}

} // namespace zentrik
