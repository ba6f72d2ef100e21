#include "tools/chatmessagelistmodel.h"

#include "render/markdownmodel.h"
#include "render/markdownstrip.h"

#include <QDateTime>
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

ChatMessageListModel::Entry ChatMessageListModel::makeEntry(ChatMessageRecord record)
{
    if (record.id.isEmpty()) {
        record.id = QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
    }
    if (record.timeMs == 0) {
        record.timeMs = QDateTime::currentMSecsSinceEpoch();
    }
    ChatMessageListModel::Entry entry;
    if (record.role == ChatMessageRecord::Role::assistant) {
        entry.blocks = std::make_unique<MarkdownModel>();
        entry.blocks->setText(record.content);
        entry.isRule = matchesRulePattern(record.content);
    }
    entry.record = std::move(record);
    return entry;
}

QString ChatMessageListModel::append(ChatMessageRecord::Role role, const QString &content, bool stopped)
{
    ChatMessageRecord record;
    record.role = role;
    record.content = content;
    record.stopped = stopped;
    return append(std::move(record)).id;
}

const ChatMessageRecord &ChatMessageListModel::append(ChatMessageRecord record)
{
    const int row = int(m_entries.size());
    beginInsertRows({}, row, row);
    m_entries.push_back(makeEntry(std::move(record)));
    endInsertRows();
    Q_EMIT countChanged();
    return m_entries.back().record;
}

void ChatMessageListModel::setRecords(const QList<ChatMessageRecord> &records)
{
    beginResetModel();
    m_entries.clear();
    for (const ChatMessageRecord &record : records) {
        m_entries.push_back(makeEntry(record));
    }
    endResetModel();
    Q_EMIT countChanged();
}

void ChatMessageListModel::removeFrom(int row)
{
    if (row < 0 || row >= count()) {
        return;
    }
    beginRemoveRows({}, row, count() - 1);
    m_entries.erase(m_entries.begin() + row, m_entries.end());
    endRemoveRows();
    Q_EMIT countChanged();
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
