#pragma once

#include <QList>
#include <QMap>
#include <QPointer>
#include <QString>
#include <QUrl>

#include <functional>
#include <optional>
#include <variant>

#include "chat/chatcompletion.h"
#include "chat/chatcompletionchunk.h"
#include "chat/chaterror.h"
#include "chat/chatmessage.h"
#include "chat/chatmodel.h"
#include "chat/chatoptions.h"
#include "net/httpclient.h"

namespace zentrik {

// A client for any service that speaks the OpenAI chat completions protocol. It is a small
// value (key, addresses, extra headers and the shared HttpClient it sends through), cheap
// to copy and holding no state between calls, so several streams may run at once.
class OpenAIChatClient
{
public:
    using CallId = HttpClient::CallId;
    using CompletionResult = std::variant<ChatCompletion, ChatError>;
    using ModelsResult = std::variant<ChatModel, ChatError>;

    struct StreamHandlers
    {
        // Each chunk, in arrival order.
        std::function<void(const ChatCompletionChunk &chunk)> onChunk;
        // Once, at the end: std::nullopt for a normal end, or the failure. Chunks delivered
        // before a failure stay delivered. Not called after cancel().
        std::function<void(const std::optional<ChatError> &error)> onFinished;
    };

    // `endpoint` takes chat completions and `modelEndpoint` the model list; the caller knows
    // which service it talks to. An empty key sends no Authorization header at all.
    OpenAIChatClient(
        HttpClient *http, QString apiKey, QUrl endpoint, QUrl modelEndpoint, QMap<QString, QString> customHeaders = {});

    [[nodiscard]] QString apiKey() const { return m_apiKey; }
    [[nodiscard]] QUrl endpoint() const { return m_endpoint; }
    [[nodiscard]] QUrl modelEndpoint() const { return m_modelEndpoint; }
    [[nodiscard]] QMap<QString, QString> customHeaders() const { return m_customHeaders; }

    // One whole reply. Handlers run on the HttpClient's thread, never after `context` is gone.
    CallId send(const QString &model, const QList<ChatMessage> &messages, const ChatOptions &options, QObject *context,
        std::function<void(const CompletionResult &result)> onFinished) const;
    // A reply read as server-sent events while it arrives.
    CallId stream(const QString &model, const QList<ChatMessage> &messages, const ChatOptions &options,
        QObject *context, StreamHandlers handlers) const;
    CallId listModels(QObject *context, std::function<void(const ModelsResult &result)> onFinished) const;
    // Stops a call; none of its handlers runs afterwards.
    void cancel(CallId id) const;

    // The request body: "stream", "model", "messages", the options that are set and, only
    // when streaming, "stream_options" asking for usage.
    [[nodiscard]] static QJsonObject requestBody(
        const QString &model, const QList<ChatMessage> &messages, const ChatOptions &options, bool stream);

private:
    [[nodiscard]] HttpRequest request(const QByteArray &method, const QUrl &url) const;

    QPointer<HttpClient> m_http;
    QString m_apiKey;
    QUrl m_endpoint;
    QUrl m_modelEndpoint;
    QMap<QString, QString> m_customHeaders;
};

} // namespace zentrik
