#pragma once

#include "render/markdownblock.h"

#include <cmark-gfm.h>

namespace zentrik {

// Converts one top-level cmark-gfm block into the block a view displays.
class BlockBuilder
{
public:
    // For a list, itemEntries (when given) receives, per top-level item, the index of its
    // first entry in the flattened items.
    [[nodiscard]] static MarkdownBlock build(cmark_node *node, QList<qsizetype> *itemEntries = nullptr);
    // The marker of a top-level entry of a numbered list.
    [[nodiscard]] static QString numberMarker(qint64 number, cmark_delim_type delimiter);

private:
    static void appendListItems(
        QList<MarkdownListItem> &items, cmark_node *list, int depth, QList<qsizetype> *itemEntries = nullptr);
    static void fillTable(MarkdownBlock &block, cmark_node *table);
};

} // namespace zentrik
