#include "tools/chatmessagelistmodel.h"

#include "render/markdownmodel.h"
#include "render/markdownstrip.h"

#include <QUuid>

namespace zentrik {

ChatMessageListModel::ChatMessageListModel(QObject *parent)
    : QAbstractListModel(parent)
{ }

ChatMessageListModel::~ChatMessageListModel() = default;

int ChatMessageListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_entries.size());
}

QVariant ChatMessageListModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid)) {
        return {};
    }
    const Entry &entry = m_entries.at(size_t(index.row()));
    const bool assistant = entry.record.role == ChatMessageRecord::Role::assistant;
    switch (role) {
    case IdRole:
        return entry.record.id;
    case RoleRole:
        return assistant ? QStringLiteral("assistant") : QStringLiteral("user");
    case Qt::DisplayRole:
    case ContentRole:
        return entry.record.content;
    case BlocksRole:
        return QVariant::fromValue<QObject *>(entry.blocks.get());
    case IsRuleRole:
        return entry.isRule;
    case IsStoppedRole:
        return entry.record.stopped;
    case SymbolRole:
        return assistant ? QStringLiteral("brain.head.profile") : QStringLiteral("person.circle.fill");
    default:
        return {};
    }
}

QHash<int, QByteArray> ChatMessageListModel::roleNames() const
{
    return { { IdRole, "messageId" }, { RoleRole, "role" }, { ContentRole, "content" }, { BlocksRole, "blocks" },
        { IsRuleRole, "isRule" }, { SymbolRole, "symbol" }, { IsStoppedRole, "isStopped" } };
}

QString ChatMessageListModel::append(ChatMessageRecord::Role role, const QString &content, bool stopped)
{
    Entry entry;
    entry.record = { QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper(), role, content, stopped };
    if (role == ChatMessageRecord::Role::assistant) {
        entry.blocks = std::make_unique<MarkdownModel>();
        entry.blocks->setText(content);
        entry.isRule = matchesRulePattern(content);
    }
    const int row = int(m_entries.size());
    beginInsertRows({}, row, row);
    m_entries.push_back(std::move(entry));
    endInsertRows();
    Q_EMIT countChanged();
    return m_entries.back().record.id;
}

void ChatMessageListModel::clear()
{
    if (m_entries.empty()) {
        return;
    }
    beginResetModel();
    m_entries.clear();
    endResetModel();
    Q_EMIT countChanged();
}

} // namespace zentrik
