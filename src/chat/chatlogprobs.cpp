#include "chat/chatlogprobs.h"

#include "chat/jsonfields.h"

namespace zentrik {

namespace {

std::optional<ChatLogprobs::Token> tokenFromJson(const QJsonValue &value, int depth);

std::optional<QList<ChatLogprobs::Token>> tokensFromJson(JsonFields &fields, QLatin1StringView key, int depth)
{
    const auto array = fields.array(key);
    if (!array) {
        return std::nullopt;
    }
    QList<ChatLogprobs::Token> tokens;
    for (const QJsonValue entry : *array) {
        auto token = tokenFromJson(entry, depth);
        if (!token) {
            fields.fail();
            return std::nullopt;
        }
        tokens.append(*std::move(token));
    }
    return tokens;
}

std::optional<ChatLogprobs::Token> tokenFromJson(const QJsonValue &value, int depth)
{
    // Top log probabilities hold entries of the same shape, one level down; a deeper
    // nesting is not something a service sends.
    if (!value.isObject() || depth > 2) {
        return std::nullopt;
    }
    JsonFields fields(value.toObject());
    ChatLogprobs::Token token;
    token.token = fields.require(fields.string(QLatin1StringView("token")));
    token.logprob = fields.require(fields.number(QLatin1StringView("logprob")));
    if (const auto bytes = fields.array(QLatin1StringView("bytes"))) {
        QList<int> list;
        for (const QJsonValue byte : *bytes) {
            if (!byte.isDouble()) {
                return std::nullopt;
            }
            list.append(byte.toInt());
        }
        token.bytes = list;
    }
    token.topLogprobs = tokensFromJson(fields, QLatin1StringView("top_logprobs"), depth + 1);
    if (!fields.ok()) {
        return std::nullopt;
    }
    return token;
}

} // namespace

std::optional<ChatLogprobs> ChatLogprobs::fromJson(const QJsonObject &object)
{
    JsonFields fields(object);
    ChatLogprobs logprobs;
    logprobs.content = tokensFromJson(fields, QLatin1StringView("content"), 0);
    logprobs.refusal = tokensFromJson(fields, QLatin1StringView("refusal"), 0);
    if (!fields.ok()) {
        return std::nullopt;
    }
    return logprobs;
}

} // namespace zentrik
