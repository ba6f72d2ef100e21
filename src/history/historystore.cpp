// HistoryStore: opening and every write. The reads are in historyreads.cpp.
#include "history/historystore.h"

#include "history/historylogging.h"
#include "settings/preferences.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>
#include <QSet>
#include <QSqlQuery>

namespace zentrik {

namespace {

QVariant unlessSame(const QString &text, const QString &content)
{
    return text == content ? QVariant() : QVariant(text);
}

QByteArray fieldsJson(const QMap<QString, QString> &fields)
{
    QJsonObject object;
    for (auto it = fields.cbegin(); it != fields.cend(); ++it) {
        object.insert(it.key(), it.value());
    }
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

} // namespace

HistoryStore::HistoryStore(const QString &path)
    : m_db(path)
{ }

QString HistoryStore::defaultPath()
{
    return QDir(Preferences::dataDirectory()).filePath(QStringLiteral("history.sqlite"));
}

bool HistoryStore::open()
{
    return m_db.open();
}

QString HistoryStore::picturesDirectory() const
{
    return QFileInfo(m_db.path()).dir().filePath(QStringLiteral("history-pictures"));
}

std::optional<qint64> HistoryStore::upsertConversation(const ConversationRecord &conversation, bool keepNumber)
{
    QSqlQuery query(m_db.connection());
    const QString title = conversation.title.isEmpty() && !conversation.messages.isEmpty()
        ? titleFromText(conversation.messages.first().text)
        : conversation.title;
    const bool existed = m_db.value(QStringLiteral("SELECT 1 FROM conversations WHERE uid = ?"), { conversation.uid })
                             .value_or(QVariant())
                             .isValid();
    // A number is never given twice, so it is free unless this conversation holds it already.
    const bool numberFree = keepNumber && conversation.number > 0
        && !m_db.value(QStringLiteral("SELECT 1 FROM conversations WHERE id = ?"), { conversation.number })
                .value_or(QVariant())
                .isValid();
    if (!m_db.run(query,
            QStringLiteral("INSERT INTO conversations (id, uid, tool, title, created_at, updated_at, pdf_path, "
                           "pdf_sha256) VALUES (?, ?, ?, ?, ?, ?, ?, ?) ON CONFLICT (uid) DO UPDATE SET "
                           "updated_at = max(updated_at, excluded.updated_at), "
                           "pdf_path = coalesce(excluded.pdf_path, pdf_path), "
                           "pdf_sha256 = coalesce(excluded.pdf_sha256, pdf_sha256) RETURNING id"),
            { numberFree ? QVariant(conversation.number) : QVariant(), conversation.uid, conversation.tool, title,
                conversation.createdMs, conversation.updatedMs,
                conversation.pdfPath.isEmpty() ? QVariant() : QVariant(conversation.pdfPath),
                conversation.pdfSha256.isEmpty() ? QVariant() : QVariant(conversation.pdfSha256) })
        || !query.next()) {
        return std::nullopt;
    }
    const qint64 id = query.value(0).toLongLong();
    query.finish();
    if (existed) {
        return id;
    }
    if (const std::optional<GeneratorRun> &run = conversation.generator) {
        if (!m_db.run(query,
                QStringLiteral("INSERT INTO generator_runs (conversation_id, family, assistant, fields) "
                               "VALUES (?, ?, ?, ?)"),
                { id, run->family, run->assistant, QString::fromUtf8(fieldsJson(run->fields)) })) {
            return std::nullopt;
        }
    }
    if (const std::optional<ImageRun> &run = conversation.image) {
        if (!m_db.run(query,
                QStringLiteral("INSERT INTO image_runs (conversation_id, model, picture_path) VALUES (?, ?, ?)"),
                { id, run->model, run->picturePath })) {
            return std::nullopt;
        }
    }
    return id;
}

bool HistoryStore::insertMessage(qint64 conversationId, const StoredMessage &message, bool replace)
{
    QSqlQuery query(m_db.connection());
    const QString onConflict = replace
        ? QStringLiteral("DO UPDATE SET content = excluded.content, typed = excluded.typed, sent = excluded.sent, "
                         "partial = excluded.partial")
        : QStringLiteral("DO NOTHING");
    return m_db.run(query,
        QStringLiteral("INSERT INTO messages (uid, conversation_id, role, content, typed, sent, model, created_at, "
                       "partial) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?) ON CONFLICT (uid) ")
            + onConflict,
        { message.uid, conversationId,
            message.role == MessageRole::user ? QStringLiteral("user") : QStringLiteral("assistant"), message.text,
            unlessSame(message.typed, message.text), unlessSame(message.sent, message.text), message.model,
            message.timeMs, int(message.ending) });
}

bool HistoryStore::saveMessage(const ConversationRecord &conversation, const StoredMessage &message)
{
    if (!m_db.begin()) {
        return false;
    }
    ConversationRecord header = conversation;
    if (header.messages.isEmpty()) {
        header.messages.append(message); // the title comes from the first message
    }
    const std::optional<qint64> id = upsertConversation(header, false);
    if (!id || !insertMessage(*id, message, true)) {
        m_db.rollback();
        return false;
    }
    return m_db.commit();
}

std::optional<QString> HistoryStore::keepPicture(const QString &conversationUid, const QByteArray &png)
{
    const QDir folder(picturesDirectory());
    if (!folder.exists() && !QDir().mkpath(folder.path())) {
        m_db.setError(QStringLiteral("Cannot create the folder %1").arg(QDir::toNativeSeparators(folder.path())));
        return std::nullopt;
    }
    QFile::setPermissions(folder.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    const QString path = folder.filePath(conversationUid + QStringLiteral(".png"));
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || !file.setPermissions(QFile::ReadOwner | QFile::WriteOwner)
        || file.write(png) != png.size() || !file.commit()) {
        m_db.setError(QStringLiteral("Cannot write %1: %2").arg(QDir::toNativeSeparators(path), file.errorString()));
        return std::nullopt;
    }
    return path;
}

bool HistoryStore::removeMessages(const QString &conversationUid, const QStringList &messageUids)
{
    if (!m_db.begin()) {
        return false;
    }
    QSqlQuery query(m_db.connection());
    for (const QString &uid : messageUids) {
        if (!m_db.run(query,
                QStringLiteral("DELETE FROM messages WHERE uid = ? AND conversation_id = "
                               "(SELECT id FROM conversations WHERE uid = ?)"),
                { uid, conversationUid })) {
            m_db.rollback();
            return false;
        }
    }
    return m_db.commit();
}

bool HistoryStore::rename(const QString &reference, const QString &title)
{
    const std::optional<QString> uid = resolve(reference);
    const QString simplified = title.simplified();
    if (!uid) {
        return false;
    }
    if (simplified.isEmpty()) {
        m_db.setError(QStringLiteral("A title cannot be empty"));
        return false;
    }
    QSqlQuery query(m_db.connection());
    return m_db.run(query, QStringLiteral("UPDATE conversations SET title = ? WHERE uid = ?"), { simplified, *uid });
}

std::optional<ConversationRecord> HistoryStore::take(const QString &reference)
{
    std::optional<ConversationRecord> conversation = load(reference);
    if (!conversation || !m_db.begin()) {
        return std::nullopt;
    }
    QSqlQuery query(m_db.connection());
    if (!m_db.run(query, QStringLiteral("DELETE FROM conversations WHERE uid = ?"), { conversation->uid })
        || !m_db.commit()) {
        m_db.rollback();
        return std::nullopt;
    }
    return conversation;
}

std::optional<int> HistoryStore::removeAll()
{
    if (!m_db.begin()) {
        return std::nullopt;
    }
    const std::optional<QVariant> count = m_db.value(QStringLiteral("SELECT count(*) FROM conversations"));
    QSqlQuery query(m_db.connection());
    if (!count || !m_db.run(query, QStringLiteral("DELETE FROM conversations")) || !m_db.commit()) {
        m_db.rollback();
        return std::nullopt;
    }
    return count->toInt();
}

void HistoryStore::removeUnreferencedPictures()
{
    QSqlQuery query(m_db.connection());
    if (!m_db.run(query, QStringLiteral("SELECT picture_path FROM image_runs"))) {
        return; // better to keep a picture than to remove one still in use
    }
    QSet<QString> kept;
    while (query.next()) {
        kept.insert(QFileInfo(query.value(0).toString()).fileName());
    }
    const QDir folder(picturesDirectory());
    for (const QString &name : folder.entryList({ QStringLiteral("*.png") }, QDir::Files)) {
        if (!kept.contains(name)) {
            QFile::remove(folder.filePath(name));
        }
    }
}

std::optional<HistoryStore::ImportCounts> HistoryStore::import(
    const QList<ConversationRecord> &conversations, bool keepNumbers)
{
    if (!m_db.begin()) {
        return std::nullopt;
    }
    ImportCounts counts;
    for (const ConversationRecord &conversation : conversations) {
        const bool existed
            = m_db.value(QStringLiteral("SELECT 1 FROM conversations WHERE uid = ?"), { conversation.uid })
                  .value_or(QVariant())
                  .isValid();
        const std::optional<qint64> id = upsertConversation(conversation, keepNumbers);
        if (!id) {
            m_db.rollback();
            return std::nullopt;
        }
        existed ? ++counts.present : ++counts.conversations;
        for (const StoredMessage &message : conversation.messages) {
            const std::optional<QVariant> known
                = m_db.value(QStringLiteral("SELECT 1 FROM messages WHERE uid = ?"), { message.uid });
            if (!known || (!known->isValid() && !insertMessage(*id, message, false))) {
                m_db.rollback();
                return std::nullopt;
            }
            if (!known->isValid()) {
                ++counts.messages;
            }
        }
    }
    if (!m_db.commit()) {
        return std::nullopt;
    }
    return counts;
}

} // namespace zentrik
