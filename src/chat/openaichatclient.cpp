#include "chat/openaichatclient.h"

#include "chat/chatstreamdecoder.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>

#include <memory>

namespace zentrik {

namespace {

QString unreadableReply(const QString &why)
{
    return QCoreApplication::translate("OpenAIChatClient", "The reply could not be read: %1").arg(why);
}

// Turns a whole answer into the JSON object it should hold, or the failure.
std::variant<QJsonObject, ChatError> answerObject(const HttpResult &result)
{
    if (const auto *error = std::get_if<TransportError>(&result)) {
        return ChatError::fromTransport(*error);
    }
    const auto &response = std::get<HttpResponse>(result);
    if (!response.isSuccess()) {
        return ChatError::fromHttpStatus(response.status, response.body);
    }
    QJsonParseError parseError {};
    const QJsonDocument document = QJsonDocument::fromJson(response.body, &parseError);
    if (parseError.error != QJsonParseError::NoError) {
        return ChatError::invalidReply(unreadableReply(parseError.errorString()));
    }
    if (!document.isObject()) {
        return ChatError::invalidReply(unreadableReply(QStringLiteral("not a JSON object")));
    }
    return document.object();
}

} // namespace

OpenAIChatClient::OpenAIChatClient(
    HttpClient *http, QString apiKey, QUrl endpoint, QUrl modelEndpoint, QMap<QString, QString> customHeaders)
    : m_http(http)
    , m_apiKey(std::move(apiKey))
    , m_endpoint(std::move(endpoint))
    , m_modelEndpoint(std::move(modelEndpoint))
    , m_customHeaders(std::move(customHeaders))
{ }

QJsonObject OpenAIChatClient::requestBody(
    const QString &model, const QList<ChatMessage> &messages, const ChatOptions &options, bool stream)
{
    QJsonArray messageList;
    for (const ChatMessage &message : messages) {
        messageList.append(message.toJson());
    }
    QJsonObject body { { QStringLiteral("stream"), stream }, { QStringLiteral("model"), model },
        { QStringLiteral("messages"), messageList } };
    options.writeTo(body);
    if (stream) {
        body.insert(QStringLiteral("stream_options"), QJsonObject { { QStringLiteral("include_usage"), true } });
    }
    return body;
}

HttpRequest OpenAIChatClient::request(const QByteArray &method, const QUrl &url) const
{
    HttpRequest request;
    request.method = method;
    request.url = url;
    if (method == "POST") {
        request.headers.append({ QByteArrayLiteral("Content-Type"), QByteArrayLiteral("application/json") });
    }
    // A server that needs no key (a model server on this computer) is sent none.
    if (!m_apiKey.isEmpty()) {
        request.headers.append({ QByteArrayLiteral("Authorization"), "Bearer " + m_apiKey.toUtf8() });
    }
    for (auto it = m_customHeaders.cbegin(); it != m_customHeaders.cend(); ++it) {
        request.headers.append({ it.key().toUtf8(), it.value().toUtf8() });
    }
    return request;
}

OpenAIChatClient::CallId OpenAIChatClient::send(const QString &model, const QList<ChatMessage> &messages,
    const ChatOptions &options, QObject *context, std::function<void(const CompletionResult &)> onFinished) const
{
    if (m_http.isNull()) {
        onFinished(ChatError::fromTransport({ TransportError::Kind::Other, QStringLiteral("No network client") }));
        return 0;
    }
    HttpRequest post = request("POST", m_endpoint);
    post.body = QJsonDocument(requestBody(model, messages, options, false)).toJson(QJsonDocument::Compact);
    return m_http->send(std::move(post), context, [onFinished = std::move(onFinished)](const HttpResult &result) {
        auto object = answerObject(result);
        if (auto *error = std::get_if<ChatError>(&object)) {
            onFinished(*error);
            return;
        }
        auto completion = ChatCompletion::fromJson(std::get<QJsonObject>(object));
        if (!completion) {
            onFinished(ChatError::invalidReply(unreadableReply(QStringLiteral("not a chat completion"))));
            return;
        }
        onFinished(*std::move(completion));
    });
}

OpenAIChatClient::CallId OpenAIChatClient::stream(const QString &model, const QList<ChatMessage> &messages,
    const ChatOptions &options, QObject *context, StreamHandlers handlers) const
{
    if (m_http.isNull()) {
        handlers.onFinished(
            ChatError::fromTransport({ TransportError::Kind::Other, QStringLiteral("No network client") }));
        return 0;
    }
    HttpRequest post = request("POST", m_endpoint);
    post.setHeader("Accept", "text/event-stream");
    post.body = QJsonDocument(requestBody(model, messages, options, true)).toJson(QJsonDocument::Compact);

    auto decoder = std::make_shared<ChatStreamDecoder>();
    auto shared = std::make_shared<StreamHandlers>(std::move(handlers));
    HttpClient::StreamHandlers http;
    http.onLine = [decoder, shared](QByteArrayView line) {
        const ChatStreamDecoder::Event event = decoder->decodeLine(line);
        switch (event.kind) {
        case ChatStreamDecoder::Event::Kind::skipped:
            return true;
        case ChatStreamDecoder::Event::Kind::chunk:
            shared->onChunk(event.chunk);
            return true;
        case ChatStreamDecoder::Event::Kind::done:
            shared->onFinished(std::nullopt);
            return false;
        case ChatStreamDecoder::Event::Kind::failed:
            shared->onFinished(event.error);
            return false;
        }
        return false;
    };
    http.onFinished = [decoder, shared](const HttpResult &result) {
        if (const auto *error = std::get_if<TransportError>(&result)) {
            // A reply that already said why it finished is complete, however the
            // connection ended afterwards.
            if (decoder->sawFinishReason()) {
                shared->onFinished(std::nullopt);
            } else {
                shared->onFinished(ChatError::fromTransport(*error));
            }
            return;
        }
        const auto &response = std::get<HttpResponse>(result);
        if (!response.isSuccess()) {
            shared->onFinished(ChatError::fromHttpStatus(response.status, response.body));
            return;
        }
        const ChatStreamDecoder::Event end = decoder->endOfInput();
        shared->onFinished(end.kind == ChatStreamDecoder::Event::Kind::failed ? end.error : std::nullopt);
    };
    return m_http->stream(std::move(post), context, std::move(http));
}

OpenAIChatClient::CallId OpenAIChatClient::listModels(
    QObject *context, std::function<void(const ModelsResult &)> onFinished) const
{
    if (m_http.isNull()) {
        onFinished(ChatError::fromTransport({ TransportError::Kind::Other, QStringLiteral("No network client") }));
        return 0;
    }
    return m_http->send(
        request("GET", m_modelEndpoint), context, [onFinished = std::move(onFinished)](const HttpResult &result) {
            auto object = answerObject(result);
            if (auto *error = std::get_if<ChatError>(&object)) {
                onFinished(*error);
                return;
            }
            auto models = ChatModel::fromJson(std::get<QJsonObject>(object));
            if (!models) {
                onFinished(ChatError::invalidReply(unreadableReply(QStringLiteral("not a model list"))));
                return;
            }
            onFinished(*std::move(models));
        });
}

void OpenAIChatClient::cancel(CallId id) const
{
    if (!m_http.isNull()) {
        m_http->cancel(id);
    }
}

} // namespace zentrik
