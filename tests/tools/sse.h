#pragma once

#include <QByteArray>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QString>

// Server-sent event lines as the OpenAI-compatible chat endpoints send them.
namespace ssefixture {

inline QByteArray chunk(const QString &text)
{
    const QJsonObject choice { { QStringLiteral("index"), 0 },
        { QStringLiteral("delta"), QJsonObject { { QStringLiteral("content"), text } } },
        { QStringLiteral("finish_reason"), QJsonValue() } };
    const QJsonObject object { { QStringLiteral("id"), QStringLiteral("c1") },
        { QStringLiteral("object"), QStringLiteral("chat.completion.chunk") }, { QStringLiteral("created"), 1 },
        { QStringLiteral("model"), QStringLiteral("m") }, { QStringLiteral("choices"), QJsonArray { choice } } };
    return "data: " + QJsonDocument(object).toJson(QJsonDocument::Compact) + "\n\n";
}

inline QByteArray errorEvent(const QString &message)
{
    const QJsonObject object { { QStringLiteral("error"), QJsonObject { { QStringLiteral("message"), message } } } };
    return "data: " + QJsonDocument(object).toJson(QJsonDocument::Compact) + "\n\n";
}

inline const QByteArray done = "data: [DONE]\n\n";

inline QByteArray completion(const QString &text)
{
    const QJsonObject message { { QStringLiteral("role"), QStringLiteral("assistant") },
        { QStringLiteral("content"), text } };
    const QJsonObject object { { QStringLiteral("choices"),
        QJsonArray { QJsonObject { { QStringLiteral("message"), message } } } } };
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

inline QByteArray anthropicReply(const QString &text)
{
    const QJsonObject block { { QStringLiteral("type"), QStringLiteral("text") }, { QStringLiteral("text"), text } };
    return QJsonDocument(QJsonObject { { QStringLiteral("content"), QJsonArray { block } } })
        .toJson(QJsonDocument::Compact);
}

} // namespace ssefixture

namespace ssefixture {

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

} // namespace ssefixture
