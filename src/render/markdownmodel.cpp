#include "render/markdownmodel.h"

namespace zentrik {

namespace {

QString taskName(MarkdownListItem::Task task)
{
    switch (task) {
    case MarkdownListItem::Task::Checked:
        return QStringLiteral("checked");
    case MarkdownListItem::Task::Unchecked:
        return QStringLiteral("unchecked");
    case MarkdownListItem::Task::None:
        break;
    }
    return {};
}

QList<int> changedRoles(const MarkdownBlock &before, const MarkdownBlock &after)
{
    QList<int> roles;
    if (before.type != after.type) {
        roles.append(MarkdownModel::TypeRole);
    }
    if (before.text != after.text) {
        roles.append(MarkdownModel::TextRole);
    }
    if (before.level != after.level) {
        roles.append(MarkdownModel::LevelRole);
    }
    if (before.language != after.language) {
        roles.append(MarkdownModel::LanguageRole);
    }
    if (before.items != after.items) {
        roles.append(MarkdownModel::ItemsRole);
    }
    if (before.tableHeader != after.tableHeader) {
        roles.append(MarkdownModel::TableHeaderRole);
    }
    if (before.tableRows != after.tableRows) {
        roles.append(MarkdownModel::TableRowsRole);
    }
    if (before.columnAlignments != after.columnAlignments) {
        roles.append(MarkdownModel::ColumnAlignmentsRole);
    }
    return roles;
}

} // namespace

MarkdownModel::MarkdownModel(QObject *parent)
    : QAbstractListModel(parent)
{ }

int MarkdownModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

QVariant MarkdownModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.parent().isValid() || index.row() >= m_rows.size()) {
        return {};
    }
    const MarkdownBlock &block = m_rows.at(index.row());
    switch (role) {
    case TypeRole:
        return MarkdownBlock::typeName(block.type);
    case Qt::DisplayRole:
    case TextRole:
        return block.text;
    case LevelRole:
        return block.level;
    case LanguageRole:
        return block.language;
    case ItemsRole: {
        QVariantList items;
        items.reserve(block.items.size());
        for (const MarkdownListItem &item : block.items) {
            items.append(QVariantMap { { QStringLiteral("text"), item.text }, { QStringLiteral("marker"), item.marker },
                { QStringLiteral("depth"), item.depth }, { QStringLiteral("task"), taskName(item.task) } });
        }
        return items;
    }
    case TableHeaderRole:
        return block.tableHeader;
    case TableRowsRole: {
        QVariantList rows;
        rows.reserve(block.tableRows.size());
        for (const QStringList &row : block.tableRows) {
            rows.append(row);
        }
        return rows;
    }
    case ColumnAlignmentsRole: {
        QVariantList alignments;
        for (const int alignment : block.columnAlignments) {
            alignments.append(alignment);
        }
        return alignments;
    }
    default:
        return {};
    }
}

QHash<int, QByteArray> MarkdownModel::roleNames() const
{
    return {
        { TypeRole, "type" },
        { TextRole, "text" },
        { LevelRole, "level" },
        { LanguageRole, "language" },
        { ItemsRole, "items" },
        { TableHeaderRole, "tableHeader" },
        { TableRowsRole, "tableRows" },
        { ColumnAlignmentsRole, "columnAlignments" },
    };
}

void MarkdownModel::setText(const QString &text)
{
    if (text == m_renderer.text()) {
        return;
    }
    // A text that only continues the current one is treated as more pieces of it.
    if (!m_renderer.text().isEmpty() && text.startsWith(m_renderer.text())) {
        appendText(text.sliced(m_renderer.text().size()));
        return;
    }
    m_renderer.setText(text);
    syncRows(0);
    Q_EMIT textChanged();
}

void MarkdownModel::appendText(const QString &piece)
{
    if (piece.isEmpty()) {
        return;
    }
    const qsizetype unchanged = m_renderer.stableBlockCount();
    m_renderer.append(piece);
    syncRows(qMin(unchanged, m_renderer.stableBlockCount()));
    Q_EMIT textChanged();
}

void MarkdownModel::clear()
{
    if (m_renderer.text().isEmpty()) {
        return;
    }
    m_renderer.clear();
    syncRows(0);
    Q_EMIT textChanged();
}

void MarkdownModel::syncRows(qsizetype from)
{
    const QList<MarkdownBlock> &blocks = m_renderer.blocks();
    const qsizetype oldCount = m_rows.size();
    const qsizetype common = qMin(oldCount, blocks.size());
    for (qsizetype row = from; row < common; ++row) {
        const QList<int> roles = changedRoles(m_rows.at(row), blocks.at(row));
        if (roles.isEmpty()) {
            continue;
        }
        m_rows[row] = blocks.at(row);
        const QModelIndex changed = index(int(row));
        Q_EMIT dataChanged(changed, changed, roles);
    }
    if (blocks.size() > oldCount) {
        beginInsertRows(QModelIndex(), int(oldCount), int(blocks.size() - 1));
        m_rows.reserve(blocks.size());
        for (qsizetype row = oldCount; row < blocks.size(); ++row) {
            m_rows.append(blocks.at(row));
        }
        endInsertRows();
    } else if (blocks.size() < oldCount) {
        beginRemoveRows(QModelIndex(), int(blocks.size()), int(oldCount - 1));
        m_rows.resize(blocks.size());
        endRemoveRows();
    }
    if (blocks.size() != oldCount) {
        Q_EMIT countChanged();
    }
}

} // namespace zentrik
