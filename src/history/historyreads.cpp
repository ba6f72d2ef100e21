// HistoryStore: lists and loading. Search is in historysearch.cpp.
#include "history/historystore.h"

#include <QHash>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSqlQuery>

#include <algorithm>

namespace zentrik {

namespace {

const QString conversationColumns = QStringLiteral(
    "SELECT c.id, c.uid, c.tool, c.title, c.created_at, c.updated_at, c.pdf_path, c.pdf_sha256,"
    " g.family, g.assistant, g.fields, i.model, i.picture_path,"
    " (SELECT count(*) FROM messages m WHERE m.conversation_id = c.id),"
    " (SELECT substr(m.content, 1, 400) FROM messages m WHERE m.conversation_id = c.id ORDER BY m.id LIMIT 1)"
    " FROM conversations c"
    " LEFT JOIN generator_runs g ON g.conversation_id = c.id"
    " LEFT JOIN image_runs i ON i.conversation_id = c.id ");

ConversationRecord conversationFrom(const QSqlQuery &query)
{
    ConversationRecord record;
    record.number = query.value(0).toLongLong();
    record.uid = query.value(1).toString();
    record.tool = query.value(2).toString();
    record.title = query.value(3).toString();
    record.createdMs = query.value(4).toLongLong();
    record.updatedMs = query.value(5).toLongLong();
    record.pdfPath = query.value(6).toString();
    record.pdfSha256 = query.value(7).toString();
    if (!query.value(8).isNull()) {
        GeneratorRun run { query.value(8).toString(), query.value(9).toString(), {} };
        const QJsonObject fields = QJsonDocument::fromJson(query.value(10).toString().toUtf8()).object();
        for (auto it = fields.constBegin(); it != fields.constEnd(); ++it) {
            run.fields.insert(it.key(), it.value().toString());
        }
        record.generator = std::move(run);
    }
    if (!query.value(11).isNull()) {
        record.image = ImageRun { query.value(11).toString(), query.value(12).toString() };
    }
    record.messageCount = query.value(13).toInt();
    record.preview = firstLine(query.value(14).toString());
    return record;
}

} // namespace

QList<ConversationRecord> HistoryStore::readConversations(const QString &where, const QVariantList &values)
{
    QList<ConversationRecord> records;
    QSqlQuery query(m_db.connection());
    query.setForwardOnly(true);
    if (!m_db.run(query, conversationColumns + where, values)) {
        return records;
    }
    while (query.next()) {
        records.append(conversationFrom(query));
    }
    return records;
}

QList<StoredMessage> HistoryStore::readMessages(qint64 conversationId)
{
    QList<StoredMessage> messages;
    QSqlQuery query(m_db.connection());
    query.setForwardOnly(true);
    if (!m_db.run(query,
            QStringLiteral("SELECT uid, role, content, typed, sent, model, created_at, partial FROM messages "
                           "WHERE conversation_id = ? ORDER BY id"),
            { conversationId })) {
        return messages;
    }
    while (query.next()) {
        StoredMessage message;
        message.uid = query.value(0).toString();
        message.role
            = query.value(1).toString() == QLatin1String("assistant") ? MessageRole::assistant : MessageRole::user;
        message.text = query.value(2).toString();
        message.typed = query.value(3).isNull() ? message.text : query.value(3).toString();
        message.sent = query.value(4).isNull() ? message.text : query.value(4).toString();
        message.model = query.value(5).toString();
        message.timeMs = query.value(6).toLongLong();
        message.ending = MessageEnding(std::clamp(query.value(7).toInt(), 0, 2));
        messages.append(std::move(message));
    }
    return messages;
}

QList<ConversationRecord> HistoryStore::list(const QString &tool, int limit)
{
    return readConversations(
        QStringLiteral("WHERE coalesce(?, '') = '' OR c.tool = ? ORDER BY c.updated_at DESC, c.id DESC LIMIT ?"),
        { tool, tool, limit > 0 ? limit : -1 });
}

std::optional<QString> HistoryStore::resolve(const QString &reference)
{
    const QString trimmed = reference.trimmed();
    bool isNumber = false;
    const qint64 number = trimmed.toLongLong(&isNumber);
    QSqlQuery query(m_db.connection());
    const bool ran = isNumber
        ? m_db.run(query, QStringLiteral("SELECT uid FROM conversations WHERE id = ?"), { number })
        : m_db.run(query, QStringLiteral("SELECT uid FROM conversations WHERE substr(uid, 1, length(?)) = ? LIMIT 2"),
            { trimmed, trimmed });
    if (!ran) {
        return std::nullopt;
    }
    QStringList found;
    while (query.next()) {
        found.append(query.value(0).toString());
    }
    if (found.size() == 1 && (isNumber || trimmed.size() >= 4)) {
        return found.first();
    }
    m_db.setError(found.size() > 1
            ? QStringLiteral("'%1' fits more than one conversation; give more of its id").arg(trimmed)
            : QStringLiteral("No conversation %1 in the history").arg(trimmed));
    return std::nullopt;
}

std::optional<ConversationRecord> HistoryStore::load(const QString &reference)
{
    const std::optional<QString> uid = resolve(reference);
    if (!uid) {
        return std::nullopt;
    }
    QList<ConversationRecord> found = readConversations(QStringLiteral("WHERE c.uid = ?"), { *uid });
    if (found.isEmpty()) {
        return std::nullopt;
    }
    found.first().messages = readMessages(found.first().number);
    return found.first();
}

QList<ConversationRecord> HistoryStore::loadAll()
{
    QList<ConversationRecord> all = readConversations(QStringLiteral("ORDER BY c.created_at, c.uid"), {});
    for (ConversationRecord &record : all) {
        record.messages = readMessages(record.number);
    }
    return all;
}

std::optional<int> HistoryStore::count()
{
    const std::optional<QVariant> value = m_db.value(QStringLiteral("SELECT count(*) FROM conversations"));
    return value ? std::optional<int>(value->toInt()) : std::nullopt;
}

} // namespace zentrik
