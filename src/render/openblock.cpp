#include "render/openblock.h"

#include "render/blockbuilder.h"
#include "render/markdownrenderer.h"

namespace zentrik {

OpenBlock OpenBlock::list(const MarkdownBlock &list, qsizetype entries, qint64 nextNumber, bool parenDelimiter)
{
    OpenBlock open;
    open.m_block = list;
    open.m_block.items.resize(entries);
    open.m_nextNumber = nextNumber;
    open.m_parenDelimiter = parenDelimiter;
    return open;
}

std::optional<OpenBlock> OpenBlock::table(const MarkdownBlock &table, QStringView headerLines)
{
    if (table.tableRows.isEmpty()) {
        return std::nullopt;
    }
    OpenBlock open;
    open.m_block = table;
    open.m_block.tableRows.removeLast();
    open.m_prefix = headerLines.toUtf8();
    const QList<MarkdownBlock> alone = MarkdownRenderer::render(headerLines.toString());
    if (alone.size() != 1 || alone.first().type != MarkdownBlock::Type::Table || !alone.first().tableRows.isEmpty()
        || alone.first().tableHeader != table.tableHeader || alone.first().columnAlignments != table.columnAlignments) {
        return std::nullopt;
    }
    return open;
}

std::optional<OpenBlock> OpenBlock::withTable(const MarkdownBlock &table) const
{
    if (table.tableRows.isEmpty()) {
        return std::nullopt;
    }
    OpenBlock open = *this;
    open.m_block = table;
    open.m_block.tableRows.removeLast();
    return open;
}

std::optional<MarkdownBlock> OpenBlock::merged(const MarkdownBlock &rest) const
{
    if (rest.type != m_block.type) {
        return std::nullopt;
    }
    MarkdownBlock whole = m_block;
    if (isTable()) {
        if (rest.tableHeader != m_block.tableHeader || rest.columnAlignments != m_block.columnAlignments) {
            return std::nullopt;
        }
        whole.tableRows.append(rest.tableRows);
        return whole;
    }
    // Numbers follow the list's first item; a list parsed on its own starts at its own.
    qint64 number = m_nextNumber;
    for (MarkdownListItem item : rest.items) {
        if (item.depth == 0 && !item.marker.isEmpty() && m_block.type == MarkdownBlock::Type::OrderedList) {
            item.marker
                = BlockBuilder::numberMarker(number++, m_parenDelimiter ? CMARK_PAREN_DELIM : CMARK_PERIOD_DELIM);
        }
        whole.items.append(item);
    }
    return whole;
}

QString OpenBlock::nextMarker() const
{
    if (m_block.type == MarkdownBlock::Type::OrderedList) {
        return BlockBuilder::numberMarker(m_nextNumber, m_parenDelimiter ? CMARK_PAREN_DELIM : CMARK_PERIOD_DELIM);
    }
    return m_block.items.isEmpty() ? QString() : m_block.items.constFirst().marker;
}

} // namespace zentrik
