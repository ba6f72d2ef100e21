#include "model/textrequest.h"

#include "chat/chaterror.h"
#include "model/jsonbody.h"
#include "model/modellogging.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace zentrik {

namespace {

QJsonObject message(const char *role, const QString &content)
{
    return { { QStringLiteral("role"), QLatin1String(role) }, { QStringLiteral("content"), content } };
}

// The earlier messages, then the prompt as the user's message, after `messages`.
QJsonArray conversation(const QList<ChatMessage> &earlier, const QString &prompt, QJsonArray messages = {})
{
    for (const ChatMessage &earlierMessage : earlier) {
        QString text;
        for (const ChatMessage::Content &part : earlierMessage.content) {
            text += part.text;
        }
        messages.append(QJsonObject { { QStringLiteral("role"), ChatMessage::roleName(earlierMessage.role) },
            { QStringLiteral("content"), text } });
    }
    messages.append(message("user", prompt));
    return messages;
}

QString providerName(TextProvider provider)
{
    switch (provider) {
    case TextProvider::openAI:
        return QStringLiteral("OpenAI");
    case TextProvider::anthropic:
        return QStringLiteral("Anthropic");
    case TextProvider::openRouter:
        return QStringLiteral("OpenRouter");
    case TextProvider::custom:
        return QStringLiteral("The custom provider");
    }
    return {};
}

// "choices", first element, "message", "content".
std::optional<QString> chatReply(const QJsonObject &object)
{
    const QJsonArray choices = object.value(QLatin1String("choices")).toArray();
    if (choices.isEmpty()) {
        return std::nullopt;
    }
    const QJsonValue content
        = choices.first().toObject().value(QLatin1String("message")).toObject().value(QLatin1String("content"));
    if (!content.isString()) {
        return std::nullopt;
    }
    return content.toString();
}

// The text of every text block under "content", joined.
std::optional<QString> anthropicReply(const QJsonObject &object)
{
    const QJsonValue content = object.value(QLatin1String("content"));
    if (!content.isArray()) {
        return std::nullopt;
    }
    QString text;
    bool found = false;
    for (const QJsonValue block : content.toArray()) {
        const QJsonValue blockText = block.toObject().value(QLatin1String("text"));
        if (blockText.isString()) {
            text += blockText.toString();
            found = true;
        }
    }
    if (!found) {
        return std::nullopt;
    }
    return text;
}

} // namespace

QUrl TextRequest::endpoint(TextProvider provider)
{
    switch (provider) {
    case TextProvider::openAI:
        return providerUrl(Provider::openAI, QStringLiteral("/v1/chat/completions"));
    case TextProvider::anthropic:
        return providerUrl(Provider::anthropic, QStringLiteral("/v1/messages"));
    case TextProvider::openRouter:
        return providerUrl(Provider::openRouter, QStringLiteral("/api/v1/chat/completions"));
    case TextProvider::custom:
        break;
    }
    return {};
}

HttpRequest TextRequest::buildOpenAICompatible(const QUrl &endpoint, const QString &model, const QString &prompt,
    const QString &key, const QList<ChatMessage> &earlier)
{
    HttpRequest request;
    request.method = QByteArrayLiteral("POST");
    request.url = endpoint;
    request.headers.append({ QByteArrayLiteral("Content-Type"), QByteArrayLiteral("application/json") });
    if (!key.isEmpty()) {
        request.headers.append({ QByteArrayLiteral("Authorization"), "Bearer " + key.toUtf8() });
    }
    const QJsonObject body { { QStringLiteral("model"), model },
        { QStringLiteral("messages"),
            conversation(
                earlier, prompt, QJsonArray { message("system", QStringLiteral("You are a helpful assistant.")) }) } };
    request.body = QJsonDocument(body).toJson(QJsonDocument::Compact);
    return request;
}

HttpRequest TextRequest::build(TextProvider provider, const QString &model, const QString &prompt, const QString &key,
    bool stream, const QList<ChatMessage> &earlier)
{
    if (provider == TextProvider::openAI || provider == TextProvider::custom) {
        return buildOpenAICompatible(endpoint(provider), model, prompt, key, earlier);
    }
    HttpRequest request;
    request.method = QByteArrayLiteral("POST");
    request.url = endpoint(provider);
    request.headers.append({ QByteArrayLiteral("Content-Type"), QByteArrayLiteral("application/json") });
    QJsonObject body { { QStringLiteral("model"), model } };
    switch (provider) {
    case TextProvider::openAI:
    case TextProvider::custom:
        break;
    case TextProvider::anthropic:
        request.headers.append({ QByteArrayLiteral("x-api-key"), key.toUtf8() });
        request.headers.append({ QByteArrayLiteral("anthropic-version"), QByteArrayLiteral("2023-06-01") });
        body.insert(QStringLiteral("max_tokens"), anthropicMaxTokens);
        body.insert(QStringLiteral("messages"), conversation(earlier, prompt));
        if (stream) {
            body.insert(QStringLiteral("stream"), true);
        }
        break;
    case TextProvider::openRouter:
        request.headers.append({ QByteArrayLiteral("Authorization"), "Bearer " + key.toUtf8() });
        body.insert(QStringLiteral("messages"), conversation(earlier, prompt));
        break;
    }
    request.body = QJsonDocument(body).toJson(QJsonDocument::Compact);
    return request;
}

QString refusalDetails(const HttpResult &result, const QString &key)
{
    const auto *response = std::get_if<HttpResponse>(&result);
    if (response == nullptr || response->isSuccess()) {
        return {};
    }
    constexpr qsizetype longest = 300;
    QString said = ChatError::serviceMessage(response->body).simplified();
    if (!key.isEmpty()) {
        said.replace(key, QStringLiteral("[KEY]"));
    }
    if (said.size() > longest) {
        said = said.left(longest - 1) + QChar(0x2026);
    }
    return said.isEmpty() ? QStringLiteral("HTTP %1").arg(response->status)
                          : QStringLiteral("HTTP %1: %2").arg(response->status).arg(said);
}

std::variant<QString, APIError> TextRequest::read(TextProvider provider, const HttpResult &result)
{
    if (const auto *error = std::get_if<TransportError>(&result)) {
        return APIError::fromTransport(*error);
    }
    const auto &response = std::get<HttpResponse>(result);
    if (!response.isSuccess()) {
        // The service's own words help whoever reads the log; keys never appear in them.
        const QString said = ChatError::serviceMessage(response.body);
        qCInfo(lcModel).noquote() << QStringLiteral("%1 answered HTTP %2%3")
                                         .arg(providerName(provider))
                                         .arg(response.status)
                                         .arg(said.isEmpty() ? QString() : QStringLiteral(": ") + said);
    }
    auto body = jsonBody(response.body);
    if (auto *error = std::get_if<APIError>(&body)) {
        return std::move(*error);
    }
    const auto &object = std::get<QJsonObject>(body);
    const std::optional<QString> reply
        = provider == TextProvider::anthropic ? anthropicReply(object) : chatReply(object);
    if (!reply) {
        return APIError::invalidResponse;
    }
    return *reply;
}

} // namespace zentrik
