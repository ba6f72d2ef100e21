#include "history/historyformat.h"

#include "history/historytools.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace zentrik::historyformat {

namespace {

const QStringList endingNames { QStringLiteral("complete"), QStringLiteral("stopped"), QStringLiteral("failed") };

QJsonObject messageJson(const StoredMessage &message)
{
    QJsonObject object { { QStringLiteral("id"), message.uid },
        { QStringLiteral("role"),
            message.role == MessageRole::user ? QStringLiteral("user") : QStringLiteral("assistant") },
        { QStringLiteral("text"), message.text }, { QStringLiteral("model"), message.model },
        { QStringLiteral("time"), isoTime(message.timeMs) },
        { QStringLiteral("ending"), endingNames.at(int(message.ending)) } };
    if (message.typed != message.text) {
        object.insert(QStringLiteral("typed"), message.typed);
    }
    if (message.sent != message.text) {
        object.insert(QStringLiteral("sent"), message.sent);
    }
    return object;
}

QJsonObject conversationJson(const ConversationRecord &conversation)
{
    QJsonObject object { { QStringLiteral("id"), conversation.uid }, { QStringLiteral("tool"), conversation.tool },
        { QStringLiteral("title"), conversation.title }, { QStringLiteral("created"), isoTime(conversation.createdMs) },
        { QStringLiteral("updated"), isoTime(conversation.updatedMs) } };
    if (!conversation.pdfPath.isEmpty()) {
        object.insert(QStringLiteral("pdf"),
            QJsonObject { { QStringLiteral("path"), conversation.pdfPath },
                { QStringLiteral("sha256"), conversation.pdfSha256 } });
    }
    if (conversation.generator) {
        QJsonObject fields;
        for (auto it = conversation.generator->fields.cbegin(); it != conversation.generator->fields.cend(); ++it) {
            fields.insert(it.key(), it.value());
        }
        object.insert(QStringLiteral("generator"),
            QJsonObject { { QStringLiteral("family"), conversation.generator->family },
                { QStringLiteral("assistant"), conversation.generator->assistant },
                { QStringLiteral("fields"), fields } });
    }
    if (conversation.image) {
        object.insert(QStringLiteral("image"),
            QJsonObject { { QStringLiteral("model"), conversation.image->model },
                { QStringLiteral("picture"), conversation.image->picturePath } });
    }
    QJsonArray messages;
    for (const StoredMessage &message : conversation.messages) {
        messages.append(messageJson(message));
    }
    object.insert(QStringLiteral("messages"), messages);
    return object;
}

// Reads one field of an imported object, or records why it cannot.
class Reader
{
public:
    explicit Reader(QString &error)
        : m_error(error)
    { }

    QString text(const QJsonObject &object, const char *name, const QString &where, bool required = true)
    {
        const QJsonValue value = object.value(QLatin1String(name));
        if (value.isString() || (!required && value.isUndefined())) {
            return value.toString();
        }
        fail(QStringLiteral("%1: '%2' is missing or not text").arg(where, QLatin1String(name)));
        return {};
    }

    qint64 time(const QJsonObject &object, const char *name, const QString &where)
    {
        const QDateTime time = QDateTime::fromString(text(object, name, where), Qt::ISODateWithMs);
        if (!time.isValid()) {
            fail(QStringLiteral("%1: '%2' is not a time").arg(where, QLatin1String(name)));
        }
        return time.toMSecsSinceEpoch();
    }

    void fail(const QString &message)
    {
        if (m_error.isEmpty()) {
            m_error = message;
        }
    }

    [[nodiscard]] bool failed() const { return !m_error.isEmpty(); }

private:
    QString &m_error;
};

StoredMessage readMessage(const QJsonObject &object, const QString &where, Reader &read)
{
    StoredMessage message;
    message.uid = read.text(object, "id", where);
    const QString role = read.text(object, "role", where);
    if (role != QLatin1String("user") && role != QLatin1String("assistant")) {
        read.fail(QStringLiteral("%1: 'role' is neither user nor assistant").arg(where));
    }
    message.role = role == QLatin1String("assistant") ? MessageRole::assistant : MessageRole::user;
    message.text = read.text(object, "text", where);
    message.typed = object.contains(QLatin1String("typed")) ? read.text(object, "typed", where) : message.text;
    message.sent = object.contains(QLatin1String("sent")) ? read.text(object, "sent", where) : message.text;
    message.model = read.text(object, "model", where, false);
    message.timeMs = read.time(object, "time", where);
    const qsizetype ending = endingNames.indexOf(read.text(object, "ending", where, false));
    message.ending = MessageEnding(std::max<qsizetype>(ending, 0));
    if (message.uid.isEmpty()) {
        read.fail(QStringLiteral("%1: 'id' is empty").arg(where));
    }
    return message;
}

ConversationRecord readConversation(const QJsonObject &object, const QString &where, Reader &read)
{
    ConversationRecord conversation;
    conversation.uid = read.text(object, "id", where);
    conversation.tool = read.text(object, "tool", where);
    conversation.title = read.text(object, "title", where);
    conversation.createdMs = read.time(object, "created", where);
    conversation.updatedMs = read.time(object, "updated", where);
    if (conversation.uid.isEmpty() || !historytool::all().contains(conversation.tool)) {
        read.fail(QStringLiteral("%1: no id, or a tool this version does not know").arg(where));
    }
    const QJsonObject pdf = object.value(QLatin1String("pdf")).toObject();
    conversation.pdfPath = read.text(pdf, "path", where, false);
    conversation.pdfSha256 = read.text(pdf, "sha256", where, false);
    if (object.contains(QLatin1String("generator"))) {
        const QJsonObject generator = object.value(QLatin1String("generator")).toObject();
        GeneratorRun run { read.text(generator, "family", where), read.text(generator, "assistant", where), {} };
        const QJsonObject fields = generator.value(QLatin1String("fields")).toObject();
        for (auto it = fields.constBegin(); it != fields.constEnd(); ++it) {
            run.fields.insert(it.key(), it.value().toString());
        }
        conversation.generator = std::move(run);
    }
    if (object.contains(QLatin1String("image"))) {
        const QJsonObject image = object.value(QLatin1String("image")).toObject();
        conversation.image = ImageRun { read.text(image, "model", where), read.text(image, "picture", where) };
    }
    const QJsonValue messages = object.value(QLatin1String("messages"));
    if (!messages.isArray()) {
        read.fail(QStringLiteral("%1: 'messages' is not a list").arg(where));
    }
    int index = 0;
    for (const QJsonValue message : messages.toArray()) {
        ++index;
        conversation.messages.append(
            readMessage(message.toObject(), QStringLiteral("%1, message %2").arg(where).arg(index), read));
        if (read.failed()) {
            break;
        }
    }
    conversation.messageCount = int(conversation.messages.size());
    return conversation;
}

QString markdownTime(qint64 ms)
{
    return QDateTime::fromMSecsSinceEpoch(ms).toString(QStringLiteral("yyyy-MM-dd HH:mm"));
}

QString markdownOf(const ConversationRecord &conversation)
{
    QString text = QStringLiteral("# %1\n\n%2 · %3\n")
                       .arg(conversation.title, historytool::displayName(conversation.tool),
                           markdownTime(conversation.createdMs));
    if (!conversation.pdfPath.isEmpty()) {
        text += QStringLiteral("\nPDF: %1 (SHA-256 %2)\n").arg(conversation.pdfPath, conversation.pdfSha256);
    }
    if (conversation.generator) {
        text += QStringLiteral("\nAssistant: %1\n").arg(conversation.generator->assistant);
        for (auto it = conversation.generator->fields.cbegin(); it != conversation.generator->fields.cend(); ++it) {
            text += QStringLiteral("- %1: %2\n").arg(it.key(), it.value());
        }
    }
    if (conversation.image) {
        text += QStringLiteral("\nImage model: %1  \nPicture: %2\n")
                    .arg(conversation.image->model, conversation.image->picturePath);
    }
    for (const StoredMessage &message : conversation.messages) {
        const bool user = message.role == MessageRole::user;
        text += QStringLiteral("\n**%1** · %2%3\n\n%4\n")
                    .arg(user ? QStringLiteral("You") : QStringLiteral("Assistant"), markdownTime(message.timeMs),
                        message.model.isEmpty() ? QString() : QStringLiteral(" · ") + message.model,
                        message.text.trimmed());
        if (message.ending != MessageEnding::complete) {
            text += message.ending == MessageEnding::stopped ? QStringLiteral("\n*(stopped)*\n")
                                                             : QStringLiteral("\n*(cut off by an error)*\n");
        }
    }
    return text;
}

} // namespace

QString isoTime(qint64 ms)
{
    return QDateTime::fromMSecsSinceEpoch(ms, Qt::UTC).toString(Qt::ISODateWithMs);
}

QByteArray toJson(const QList<ConversationRecord> &conversations)
{
    QJsonArray list;
    for (const ConversationRecord &conversation : conversations) {
        list.append(conversationJson(conversation));
    }
    const QJsonObject root { { QStringLiteral("format"), jsonFormatName }, { QStringLiteral("version"), jsonVersion },
        { QStringLiteral("conversations"), list } };
    return QJsonDocument(root).toJson(QJsonDocument::Indented);
}

QString toMarkdown(const QList<ConversationRecord> &conversations)
{
    QStringList parts;
    for (const ConversationRecord &conversation : conversations) {
        parts.append(markdownOf(conversation));
    }
    return parts.join(QStringLiteral("\n---\n\n"));
}

std::variant<QList<ConversationRecord>, QString> fromJson(const QByteArray &json)
{
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(json, &parseError);
    if (parseError.error != QJsonParseError::NoError) {
        return QStringLiteral("not JSON (%1 at byte %2)").arg(parseError.errorString()).arg(parseError.offset);
    }
    const QJsonObject root = document.object();
    if (root.value(QLatin1String("format")).toString() != jsonFormatName) {
        return QStringLiteral("not a Zentrik history export (no \"format\": \"%1\")").arg(jsonFormatName);
    }
    const int version = root.value(QLatin1String("version")).toInt(0);
    if (version < 1 || version > jsonVersion) {
        return QStringLiteral("history format version %1 is not one this Zentrik reads (1 to %2)")
            .arg(root.value(QLatin1String("version")).toVariant().toString())
            .arg(jsonVersion);
    }
    QString error;
    Reader read(error);
    QList<ConversationRecord> conversations;
    int index = 0;
    for (const QJsonValue value : root.value(QLatin1String("conversations")).toArray()) {
        ++index;
        conversations.append(readConversation(value.toObject(), QStringLiteral("conversation %1").arg(index), read));
        if (read.failed()) {
            return error;
        }
    }
    return conversations;
}

} // namespace zentrik::historyformat
