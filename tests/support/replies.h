#pragma once

#include <QByteArray>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QString>

// What the providers send, written the way they write it: streamed events of the
// OpenAI-compatible and Anthropic endpoints, and whole replies.
namespace zentrik::test {

inline QByteArray dataLine(const QJsonObject &object)
{
    return "data: " + QJsonDocument(object).toJson(QJsonDocument::Compact) + "\n\n";
}

// One chat completion chunk carrying text and, optionally, a finish reason.
inline QByteArray chunkLine(const QString &text, const QString &finishReason = {})
{
    QJsonObject choice { { "index", 0 }, { "delta", QJsonObject { { "content", text } } } };
    choice.insert("finish_reason", finishReason.isEmpty() ? QJsonValue() : QJsonValue(finishReason));
    return dataLine({ { "id", "gen-1" }, { "object", "chat.completion.chunk" }, { "created", 1 }, { "model", "m" },
        { "choices", QJsonArray { choice } } });
}

inline QByteArray errorLine(const QString &message)
{
    return dataLine({ { "error", QJsonObject { { "message", message } } } });
}

inline const QByteArray doneLine = "data: [DONE]\n\n";

// An Anthropic event of the given type with its fields.
inline QByteArray anthropicEvent(const char *type, const QJsonObject &fields = {})
{
    QJsonObject object = fields;
    object.insert("type", QLatin1String(type));
    return "event: " + QByteArray(type) + "\ndata: " + QJsonDocument(object).toJson(QJsonDocument::Compact) + "\n\n";
}

inline QByteArray textDelta(const QString &text)
{
    return anthropicEvent("content_block_delta",
        { { "index", 0 }, { "delta", QJsonObject { { "type", "text_delta" }, { "text", text } } } });
}

// A whole OpenAI-compatible reply holding the text.
inline QByteArray completion(const QString &text)
{
    const QJsonObject message { { "role", "assistant" }, { "content", text } };
    return QJsonDocument(QJsonObject { { "choices", QJsonArray { QJsonObject { { "message", message } } } } })
        .toJson(QJsonDocument::Compact);
}

// A whole Anthropic reply holding the text.
inline QByteArray anthropicReply(const QString &text)
{
    const QJsonObject block { { "type", "text" }, { "text", text } };
    return QJsonDocument(QJsonObject { { "content", QJsonArray { block } } }).toJson(QJsonDocument::Compact);
}

// The text of the last message of a chat request, whether its content is a plain string
// or a list of typed parts.
inline QString lastMessageText(const QJsonDocument &request)
{
    const QJsonArray messages = request.object().value(QStringLiteral("messages")).toArray();
    const QJsonValue content = messages.last().toObject().value(QStringLiteral("content"));
    if (content.isString()) {
        return content.toString();
    }
    QString text;
    for (const QJsonValue &part : content.toArray()) {
        text += part.toObject().value(QStringLiteral("text")).toString();
    }
    return text;
}

} // namespace zentrik::test
