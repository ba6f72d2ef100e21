#pragma once

#include "support/fakeprovider.h"
#include "support/replies.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStringList>

namespace zentrik::test {

// The OpenAI-compatible /v1 endpoints of the two local model servers people run most, as
// they answer: Ollama (model ids with a tag, owned by "library") and llama.cpp's server (one
// model named after its GGUF file, with a "meta" block, owned by "llamacpp").
enum class LocalModelServer { ollama, llamaCpp };

inline QStringList localServerModels(LocalModelServer kind)
{
    return kind == LocalModelServer::ollama ? QStringList { "llama3.2:latest", "qwen2.5:0.5b" }
                                            : QStringList { "Qwen2.5-0.5B-Instruct-Q4_K_M.gguf" };
}

inline QByteArray localServerModelList(LocalModelServer kind)
{
    QJsonArray data;
    for (const QString &id : localServerModels(kind)) {
        QJsonObject model { { "id", id }, { "object", "model" }, { "created", 1730000000 } };
        if (kind == LocalModelServer::ollama) {
            model.insert("owned_by", "library");
        } else {
            model.insert("owned_by", "llamacpp");
            model.insert("meta", QJsonObject { { "n_ctx_train", 32768 }, { "n_params", 494032768 } });
        }
        data.append(model);
    }
    return QJsonDocument(QJsonObject { { "object", "list" }, { "data", data } }).toJson(QJsonDocument::Compact);
}

// Scripts `fake` to answer under `prefix` (normally "/v1") like that server: the model list,
// and chat completions streamed or whole, as the request asks, with `reply` in three pieces.
inline void serveLikeLocalModelServer(FakeProvider &fake, LocalModelServer kind,
    const QString &reply = QStringLiteral("Hello from your own computer."), const QByteArray &prefix = "/v1")
{
    fake.on("GET", prefix + "/models", ScriptedReply::json(localServerModelList(kind)));
    const QString fingerprint = kind == LocalModelServer::ollama ? "fp_ollama" : "b4500";
    fake.handle("POST", prefix + "/chat/completions", [reply, fingerprint](const RecordedRequest &request) {
        const QJsonObject body = request.json().object();
        const QString model = body.value("model").toString();
        const auto envelope = [&](const char *object, const QJsonObject &choice) {
            return QJsonObject { { "id", "chatcmpl-7" }, { "object", QLatin1String(object) }, { "created", 1730000000 },
                { "model", model }, { "system_fingerprint", fingerprint }, { "choices", QJsonArray { choice } } };
        };
        if (!body.value("stream").toBool()) {
            const QJsonObject message { { "role", "assistant" }, { "content", reply } };
            return ScriptedReply::json(QJsonDocument(
                envelope("chat.completion", { { "index", 0 }, { "message", message }, { "finish_reason", "stop" } })));
        }
        QList<QByteArray> events;
        const qsizetype third = reply.size() / 3;
        const QStringList pieces { reply.left(third), reply.mid(third, third), reply.mid(2 * third) };
        for (qsizetype i = 0; i < pieces.size(); ++i) {
            QJsonObject delta { { "content", pieces.at(i) } };
            if (i == 0) {
                delta.insert("role", "assistant");
            }
            const QJsonObject chunk = envelope(
                "chat.completion.chunk", { { "index", 0 }, { "delta", delta }, { "finish_reason", QJsonValue() } });
            events.append(dataLine(chunk));
        }
        const QJsonObject last = envelope(
            "chat.completion.chunk", { { "index", 0 }, { "delta", QJsonObject {} }, { "finish_reason", "stop" } });
        events.append(dataLine(last) + doneLine);
        return ScriptedReply::sse(events);
    });
}

} // namespace zentrik::test
