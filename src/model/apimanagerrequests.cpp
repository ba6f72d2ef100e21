// The request operations of APIManager: one-shot text and streamed text. Construction,
// keys and selections live in apimanager.cpp.
#include "model/apimanager.h"

#include "chat/anthropicstreamdecoder.h"
#include "model/deliverlater.h"
#include "model/modellogging.h"
#include "model/textrequest.h"

#include <QCoreApplication>
#include <QPointer>

namespace zentrik {

struct APIManager::ActiveStream
{
    StreamId id = 0;
    HttpClient::CallId call = 0;
    StreamPiece onPiece;
    StreamCompletion completion;
    QMetaObject::Connection contextWatch;
    // The custom provider it streams from; empty for the built-in ones.
    QString customProvider;
};

struct APIManager::TextRoute
{
    TextProvider provider = TextProvider::openAI;
    // The id the provider is sent: a custom provider's model by its own id.
    QString model;
    // Empty only for a custom provider that keeps none.
    QString key;
    QUrl endpoint;
    QUrl modelsEndpoint;
    QString customProvider;
};

namespace {

// Stream failures: transport kinds keep their cases; everything else names what went wrong
// (for an HTTP failure, the status and the service's own message).
APIError toAPIError(const ChatError &error)
{
    switch (error.kind) {
    case ChatError::Kind::transport:
        return APIError::fromTransport(error.transport.value_or(TransportError {}));
    case ChatError::Kind::invalidReply:
        return { APIError::jsonParsingFailed, error.description() };
    // A stream that stopped before its end marker was cut off, however cleanly the
    // connection closed: the network layer cannot always tell a missing last chunk.
    case ChatError::Kind::incomplete:
        return APIError::connectionLost;
    case ChatError::Kind::httpStatus:
    case ChatError::Kind::serviceError:
        break;
    }
    return { APIError::generalNetworkError, error.description() };
}

void logMissingBuiltInKey()
{
    qCInfo(lcModel).noquote() << "This build carries no key for the free models (ZENTRIK_OPENROUTER_KEY)";
}

} // namespace

std::variant<APIManager::TextRoute, APIError> APIManager::routeText(const QString &modelId) const
{
    const std::optional<TextProvider> provider = routeTextModel(modelId);
    if (!provider) {
        return APIError::unsupportedModel;
    }
    TextRoute route { *provider, modelId, {}, TextRequest::endpoint(*provider), {}, {} };
    switch (*provider) {
    case TextProvider::openAI:
        route.key = m_openAIKey;
        route.modelsEndpoint = providerUrl(Provider::openAI, QStringLiteral("/v1/models"));
        break;
    case TextProvider::anthropic:
        route.key = m_claudeKey;
        break;
    case TextProvider::openRouter:
        route.key = m_openRouterKey;
        route.modelsEndpoint = m_openRouterModelsUrl;
        if (route.key.isEmpty()) {
            logMissingBuiltInKey();
            return APIError::missingBuiltInKey();
        }
        break;
    case TextProvider::custom: {
        const auto custom = splitCustomModelId(modelId);
        const CustomProvider *found = custom ? m_customProviders->find(custom->first) : nullptr;
        if (found == nullptr) {
            return APIError(APIError::unsupportedModel)
                .withDetails(tr("There is no provider named \"%1\".").arg(custom ? custom->first : modelId));
        }
        route.model = custom->second;
        route.key = m_customProviders->key(found->name);
        route.endpoint = found->chatUrl();
        route.modelsEndpoint = found->modelsUrl();
        route.customProvider = found->name;
        if (found->hasKey && route.key.isEmpty()) {
            return APIError::missingAPIKey;
        }
        return route;
    }
    }
    if (route.key.isEmpty()) {
        return APIError::missingAPIKey;
    }
    return route;
}

void APIManager::generateText(const QString &prompt, QObject *context, TextCompletion completion)
{
    generateText(prompt, {}, context, std::move(completion));
}

void APIManager::generateText(
    const QString &prompt, const QList<ChatMessage> &earlier, QObject *context, TextCompletion completion)
{
    auto routed = routeText(m_selectedTextModel);
    if (const auto *error = std::get_if<APIError>(&routed)) {
        deliverLater(this, context, [completion, error = *error] { completion(error); });
        return;
    }
    const TextRoute &route = std::get<TextRoute>(routed);
    HttpRequest request = route.provider == TextProvider::custom
        ? TextRequest::buildOpenAICompatible(route.endpoint, route.model, prompt, route.key, earlier)
        : TextRequest::build(route.provider, route.model, prompt, route.key, false, earlier);
    m_http->send(std::move(request), context,
        [provider = route.provider, key = route.key, completion = std::move(completion)](const HttpResult &result) {
            TextResult reply = TextRequest::read(provider, result);
            if (auto *error = std::get_if<APIError>(&reply)) {
                if (provider == TextProvider::anthropic) {
                    qInfo().noquote() << "API request failed: " + error->message();
                }
                *error = error->withDetails(refusalDetails(result, key));
            }
            completion(reply);
        });
}

APIManager::StreamId APIManager::streamText(
    const QString &prompt, QObject *context, StreamPiece onPiece, StreamCompletion completion)
{
    return streamText(prompt, {}, context, std::move(onPiece), std::move(completion));
}

APIManager::StreamId APIManager::streamText(const QString &prompt, const QList<ChatMessage> &earlier, QObject *context,
    StreamPiece onPiece, StreamCompletion completion)
{
    auto stream = std::make_shared<ActiveStream>();
    stream->id = m_nextStreamId++;
    stream->onPiece = std::move(onPiece);
    stream->completion = std::move(completion);

    const auto failAtOnce = [this, context, &stream](const APIError &error) {
        deliverLater(this, context, [completion = stream->completion, error] { completion(error); });
        return stream->id;
    };

    if (routeTextModel(m_selectedTextModel) == TextProvider::openRouter && !m_llmChat) {
        return failAtOnce({ APIError::generalNetworkError,
            QCoreApplication::translate("APIManager", "The chat client is not set up.") });
    }
    auto routed = routeText(m_selectedTextModel);
    if (const auto *error = std::get_if<APIError>(&routed)) {
        return failAtOnce(*error);
    }
    const TextRoute &route = std::get<TextRoute>(routed);
    stream->customProvider = route.customProvider;

    m_streams.emplace(stream->id, stream);
    const StreamId id = stream->id;
    if (context != nullptr) {
        // The HTTP client drops the call with its context; the stream goes with it, silently.
        stream->contextWatch = connect(context, &QObject::destroyed, this, [this, id] { m_streams.erase(id); });
    }

    if (route.provider == TextProvider::anthropic) {
        auto decoder = std::make_shared<AnthropicStreamDecoder>();
        HttpClient::StreamHandlers handlers;
        handlers.onLine = [this, id, stream, decoder](QByteArrayView line) {
            const AnthropicStreamDecoder::Event event = decoder->decodeLine(line);
            switch (event.kind) {
            case AnthropicStreamDecoder::Event::Kind::skipped:
                return true;
            case AnthropicStreamDecoder::Event::Kind::text:
                if (!event.text.isEmpty()) {
                    stream->onPiece(event.text);
                }
                return true;
            case AnthropicStreamDecoder::Event::Kind::done:
                finishStream(id, std::nullopt);
                return false;
            case AnthropicStreamDecoder::Event::Kind::failed:
                finishStream(id, toAPIError(*event.error));
                return false;
            }
            return false;
        };
        handlers.onFinished = [this, id, decoder](const HttpResult &result) {
            if (const auto *error = std::get_if<TransportError>(&result)) {
                finishStream(id, APIError::fromTransport(*error));
                return;
            }
            const auto &response = std::get<HttpResponse>(result);
            if (!response.isSuccess()) {
                finishStream(id, toAPIError(ChatError::fromHttpStatus(response.status, response.body)));
                return;
            }
            const AnthropicStreamDecoder::Event end = decoder->endOfInput();
            finishStream(id, end.error ? std::optional<APIError>(toAPIError(*end.error)) : std::nullopt);
        };
        stream->call = m_http->stream(TextRequest::build(route.provider, route.model, prompt, route.key, true, earlier),
            context, std::move(handlers));
        return id;
    }

    const OpenAIChatClient client = route.provider == TextProvider::openRouter
        ? *m_llmChat
        : OpenAIChatClient(m_http, route.key, route.endpoint, route.modelsEndpoint);
    OpenAIChatClient::StreamHandlers handlers;
    handlers.onChunk = [stream](const ChatCompletionChunk &chunk) {
        const std::optional<QString> text = chunk.text();
        if (text && !text->isEmpty()) {
            stream->onPiece(*text);
        }
    };
    handlers.onFinished = [this, id](const std::optional<ChatError> &error) {
        finishStream(id, error ? std::optional<APIError>(toAPIError(*error)) : std::nullopt);
    };
    QList<ChatMessage> messages = earlier;
    messages.append(ChatMessage(ChatMessage::Role::user, prompt));
    stream->call = client.stream(route.model, messages, ChatOptions {}, context, std::move(handlers));
    return id;
}

void APIManager::finishStream(StreamId id, const std::optional<APIError> &error)
{
    const auto it = m_streams.find(id);
    if (it == m_streams.end()) {
        return;
    }
    const std::shared_ptr<ActiveStream> stream = it->second;
    m_streams.erase(it);
    QObject::disconnect(stream->contextWatch);
    stream->completion(error);
}

void APIManager::stopStream(StreamId id)
{
    const auto it = m_streams.find(id);
    if (it == m_streams.end()) {
        return;
    }
    m_http->cancel(it->second->call);
    finishStream(id, std::nullopt);
}

void APIManager::endStreamsOf(const QString &providerName)
{
    QList<StreamId> ending;
    for (const auto &[id, stream] : m_streams) {
        if (!stream->customProvider.isEmpty()
            && stream->customProvider.compare(providerName, Qt::CaseInsensitive) == 0) {
            ending.append(id);
        }
    }
    std::sort(ending.begin(), ending.end());
    for (const StreamId id : ending) {
        if (const auto it = m_streams.find(id); it != m_streams.end()) {
            m_http->cancel(it->second->call);
            finishStream(id,
                APIError(APIError::unsupportedModel)
                    .withDetails(tr("The provider %1 was removed while it answered.").arg(providerName)));
        }
    }
}

} // namespace zentrik
