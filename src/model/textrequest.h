#pragma once

#include <QString>
#include <QUrl>

#include <variant>

#include "chat/chatmessage.h"
#include "model/apierror.h"
#include "model/providerrouting.h"
#include "net/httprequest.h"
#include "net/httpresponse.h"

namespace zentrik {

// The one-shot text requests of the three providers, deliberately different in shape: only
// OpenAI gets a system message, only Anthropic a token limit, OpenRouter the plain minimum.
// A custom provider is sent OpenAI's shape at its own address.
class TextRequest
{
public:
    static constexpr int anthropicMaxTokens = 1024;

    [[nodiscard]] static QUrl endpoint(TextProvider provider);
    // The request for one prompt; `stream` asks Anthropic for its streamed messages (the same
    // body plus "stream": true) and is ignored for the other providers. The earlier messages of
    // the conversation, when there are any, go before the prompt (after OpenAI's system
    // message); without them the body is exactly the one-prompt body.
    [[nodiscard]] static HttpRequest build(TextProvider provider, const QString &model, const QString &prompt,
        const QString &key, bool stream = false, const QList<ChatMessage> &earlier = {});
    // The OpenAI request shape (a system message, the earlier messages, then the prompt) for any
    // OpenAI-compatible endpoint; no Authorization header when there is no key.
    [[nodiscard]] static HttpRequest buildOpenAICompatible(const QUrl &endpoint, const QString &model,
        const QString &prompt, const QString &key, const QList<ChatMessage> &earlier = {});
    // Reads the answer in the common order: transport failure, no body, a body that is not
    // JSON, no reply where the provider puts it.
    [[nodiscard]] static std::variant<QString, APIError> read(TextProvider provider, const HttpResult &result);
};

// What a provider said when it refused a request: "HTTP 503" and its own message, if any, on
// one line and cut to a readable length, with the key replaced should the provider quote it
// back. Empty for a success or when no answer came.
[[nodiscard]] QString refusalDetails(const HttpResult &result, const QString &key);

} // namespace zentrik
