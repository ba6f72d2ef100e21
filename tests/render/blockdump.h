#pragma once

#include "render/markdownblock.h"

#include <QStringList>

namespace zentrik::test {

// One line per block, readable in a failed comparison:
//   heading2: Title
//   code[python]: print(1)
//   bulletList | 0 • a | 1 ◦ [x] b
//   table: a|b / 1|2 align 1,4
inline QString dump(const QList<MarkdownBlock> &blocks)
{
    QStringList lines;
    for (const MarkdownBlock &block : blocks) {
        QString line = MarkdownBlock::typeName(block.type);
        if (block.type == MarkdownBlock::Type::Heading) {
            line += QString::number(block.level);
        }
        if (!block.language.isEmpty()) {
            line += QLatin1Char('[') + block.language + QLatin1Char(']');
        }
        if (!block.text.isEmpty()) {
            line += QStringLiteral(": ") + block.text;
        }
        for (const MarkdownListItem &item : block.items) {
            line += QStringLiteral(" | %1 %2").arg(item.depth).arg(item.marker);
            if (item.task == MarkdownListItem::Task::Checked) {
                line += QStringLiteral(" [x]");
            } else if (item.task == MarkdownListItem::Task::Unchecked) {
                line += QStringLiteral(" [ ]");
            }
            line += QLatin1Char(' ') + item.text;
        }
        if (block.type == MarkdownBlock::Type::Table) {
            QStringList rows { block.tableHeader.join(QLatin1Char('|')) };
            for (const QStringList &row : block.tableRows) {
                rows.append(row.join(QLatin1Char('|')));
            }
            QStringList alignments;
            for (const int alignment : block.columnAlignments) {
                alignments.append(QString::number(alignment));
            }
            line += QStringLiteral(": ") + rows.join(QStringLiteral(" / ")) + QStringLiteral(" align ")
                + alignments.join(QLatin1Char(','));
        }
        lines.append(line);
    }
    return lines.join(QLatin1Char('\n'));
}

} // namespace zentrik::test
