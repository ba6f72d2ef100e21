#pragma once

#include <QByteArray>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QString>

namespace zentrik::test {

// One "data: " line of a chat completion chunk carrying text and, optionally, a finish reason.
inline QByteArray chunkLine(const QString &text, const QString &finishReason = {})
{
    QJsonObject choice { { "index", 0 }, { "delta", QJsonObject { { "content", text } } } };
    choice.insert("finish_reason", finishReason.isEmpty() ? QJsonValue() : QJsonValue(finishReason));
    const QJsonObject chunk { { "id", "gen-1" }, { "object", "chat.completion.chunk" }, { "created", 1 },
        { "model", "m" }, { "choices", QJsonArray { choice } } };
    return "data: " + QJsonDocument(chunk).toJson(QJsonDocument::Compact) + "\n\n";
}

} // namespace zentrik::test
