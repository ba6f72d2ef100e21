// The request operations of APIManager: one-shot text and streamed text. Construction,
// keys and selections live in apimanager.cpp.
#include "model/apimanager.h"

#include "chat/anthropicstreamdecoder.h"
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

QString APIManager::keyFor(TextProvider provider) const
{
    switch (provider) {
    case TextProvider::openAI:
        return m_openAIKey;
    case TextProvider::anthropic:
        return m_claudeKey;
    case TextProvider::openRouter:
        return m_openRouterKey;
    }
    return {};
}

void APIManager::deliverLater(QObject *context, std::function<void()> deliver)
{
    QPointer<QObject> guard(context);
    const bool hasContext = context != nullptr;
    QMetaObject::invokeMethod(
        this,
        [guard, hasContext, deliver = std::move(deliver)] {
            if (!hasContext || !guard.isNull()) {
                deliver();
            }
        },
        Qt::QueuedConnection);
}

void APIManager::generateText(const QString &prompt, QObject *context, TextCompletion completion)
{
    generateText(prompt, {}, context, std::move(completion));
}

void APIManager::generateText(
    const QString &prompt, const QList<ChatMessage> &earlier, QObject *context, TextCompletion completion)
{
    const QString model = m_selectedTextModel;
    const std::optional<TextProvider> provider = routeTextModel(model);
    if (!provider) {
        deliverLater(context, [completion] { completion(APIError::unsupportedModel); });
        return;
    }
    const QString key = keyFor(*provider);
    if (key.isEmpty()) {
        const APIError error
            = *provider == TextProvider::openRouter ? APIError::missingBuiltInKey() : APIError::missingAPIKey;
        if (*provider == TextProvider::openRouter) {
            logMissingBuiltInKey();
        }
        deliverLater(context, [completion, error] { completion(error); });
        return;
    }
    m_http->send(TextRequest::build(*provider, model, prompt, key, false, earlier), context,
        [provider = *provider, key, completion = std::move(completion)](const HttpResult &result) {
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
        deliverLater(context, [completion = stream->completion, error] { completion(error); });
        return stream->id;
    };

    const QString model = m_selectedTextModel;
    const std::optional<TextProvider> provider = routeTextModel(model);
    if (!provider) {
        return failAtOnce(APIError::unsupportedModel);
    }
    if (*provider == TextProvider::openRouter && !m_llmChat) {
        return failAtOnce({ APIError::generalNetworkError,
            QCoreApplication::translate("APIManager", "The chat client is not set up.") });
    }
    const QString key = *provider == TextProvider::openRouter ? m_llmChat->apiKey() : keyFor(*provider);
    if (key.isEmpty()) {
        if (*provider == TextProvider::openRouter) {
            logMissingBuiltInKey();
            return failAtOnce(APIError::missingBuiltInKey());
        }
        return failAtOnce(APIError::missingAPIKey);
    }

    m_streams.emplace(stream->id, stream);
    const StreamId id = stream->id;
    if (context != nullptr) {
        // The HTTP client drops the call with its context; the stream goes with it, silently.
        stream->contextWatch = connect(context, &QObject::destroyed, this, [this, id] { m_streams.erase(id); });
    }

    if (*provider == TextProvider::anthropic) {
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
        stream->call = m_http->stream(
            TextRequest::build(*provider, model, prompt, key, true, earlier), context, std::move(handlers));
        return id;
    }

    const OpenAIChatClient client = *provider == TextProvider::openRouter
        ? *m_llmChat
        : OpenAIChatClient(m_http, key, TextRequest::endpoint(TextProvider::openAI),
            providerUrl(Provider::openAI, QStringLiteral("/v1/models")));
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
    stream->call = client.stream(model, messages, ChatOptions {}, context, std::move(handlers));
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

} // namespace zentrik
