#pragma once

#include <QDebug>
#include <QList>
#include <QString>
#include <QStringList>

namespace zentrik {

// One entry of a displayed list. Nested lists are flattened into the items that follow
// their parent item, one depth deeper, so a view draws them as plain indented rows.
struct MarkdownListItem
{
    enum class Task { None, Unchecked, Checked };

    QString text; // rich text of the item's own content
    QString marker; // "•", "◦", "▪" for bullets; "3." or "3)" for numbers; empty for a
                    // paragraph that continues an item after its nested list
    int depth = 0;
    Task task = Task::None;

    friend bool operator==(const MarkdownListItem &, const MarkdownListItem &) = default;
};

// One top-level block of a rendered reply. Text fields hold Qt rich text limited to tags a
// QML Text can show (<b>, <i>, <s>, <code>, <a href>, <br>, and for nested content <p>,
// <pre>, <ul>, <ol>, <li>, <blockquote>, <table>); a code block holds its plain source.
struct MarkdownBlock
{
    enum class Type { Paragraph, Heading, BulletList, OrderedList, Quote, Code, Table, Rule };

    Type type = Type::Paragraph;
    QString text; // paragraph, heading, quote: rich text; code: the literal source
    int level = 0; // heading level, 1 to 6
    QString language; // code: the first word of the fence's info string
    QList<MarkdownListItem> items;
    QStringList tableHeader;
    QList<QStringList> tableRows; // every row has as many cells as the header
    QList<int> columnAlignments; // Qt::AlignLeft, Qt::AlignHCenter or Qt::AlignRight per column

    [[nodiscard]] static QString typeName(Type type);

    friend bool operator==(const MarkdownBlock &, const MarkdownBlock &) = default;
};

QDebug operator<<(QDebug debug, const MarkdownBlock &block);

} // namespace zentrik
