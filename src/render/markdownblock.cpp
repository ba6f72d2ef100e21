#include "render/markdownblock.h"

namespace zentrik {

QString MarkdownBlock::typeName(Type type)
{
    switch (type) {
    case Type::Paragraph:
        return QStringLiteral("paragraph");
    case Type::Heading:
        return QStringLiteral("heading");
    case Type::BulletList:
        return QStringLiteral("bulletList");
    case Type::OrderedList:
        return QStringLiteral("orderedList");
    case Type::Quote:
        return QStringLiteral("quote");
    case Type::Code:
        return QStringLiteral("code");
    case Type::Table:
        return QStringLiteral("table");
    case Type::Rule:
        return QStringLiteral("rule");
    }
    return {};
}

QDebug operator<<(QDebug debug, const MarkdownBlock &block)
{
    const QDebugStateSaver saver(debug);
    debug.nospace() << MarkdownBlock::typeName(block.type);
    if (block.level > 0) {
        debug << " h" << block.level;
    }
    if (!block.language.isEmpty()) {
        debug << " lang=" << block.language;
    }
    if (!block.text.isEmpty()) {
        debug << ' ' << block.text;
    }
    for (const MarkdownListItem &item : block.items) {
        debug << " [" << item.depth << ' ' << item.marker;
        if (item.task != MarkdownListItem::Task::None) {
            debug << (item.task == MarkdownListItem::Task::Checked ? " [x]" : " [ ]");
        }
        debug << ' ' << item.text << ']';
    }
    if (!block.tableHeader.isEmpty()) {
        debug << " header=" << block.tableHeader << " rows=" << block.tableRows << " align=" << block.columnAlignments;
    }
    return debug;
}

} // namespace zentrik
