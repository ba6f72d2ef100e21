#include "chat/chatcompletion.h"

#include "chat/jsonfields.h"

namespace zentrik {

ChatFinishReason chatFinishReasonFromString(const QString &text)
{
    if (text == QLatin1String("stop")) {
        return ChatFinishReason::stop;
    }
    if (text == QLatin1String("length")) {
        return ChatFinishReason::length;
    }
    if (text == QLatin1String("tool_calls")) {
        return ChatFinishReason::toolCalls;
    }
    if (text == QLatin1String("content_filter")) {
        return ChatFinishReason::contentFilter;
    }
    return ChatFinishReason::other;
}

namespace {

using L = QLatin1StringView;

std::optional<ChatCompletion::ToolCall> toolCallFromJson(const QJsonValue &value)
{
    if (!value.isObject()) {
        return std::nullopt;
    }
    JsonFields fields(value.toObject());
    ChatCompletion::ToolCall call;
    call.id = fields.string(L("id")).value_or(QString());
    call.type = fields.string(L("type")).value_or(QString());
    JsonFields function(fields.require(fields.object(L("function"))));
    call.functionName = function.string(L("name")).value_or(QString());
    call.functionArguments = function.string(L("arguments")).value_or(QString());
    if (!fields.ok() || !function.ok()) {
        return std::nullopt;
    }
    return call;
}

std::optional<ChatCompletion::Choice> choiceFromJson(const QJsonValue &value)
{
    if (!value.isObject()) {
        return std::nullopt;
    }
    JsonFields fields(value.toObject());
    ChatCompletion::Choice choice;
    choice.index = fields.integer(L("index")).value_or(0);
    JsonFields message(fields.require(fields.object(L("message"))));
    choice.message.role = message.string(L("role")).value_or(QString());
    choice.message.content = message.string(L("content"));
    choice.message.refusal = message.string(L("refusal"));
    if (const auto calls = message.array(L("tool_calls"))) {
        QList<ChatCompletion::ToolCall> list;
        for (const QJsonValue &entry : *calls) {
            auto call = toolCallFromJson(entry);
            if (!call) {
                return std::nullopt;
            }
            list.append(*std::move(call));
        }
        choice.message.toolCalls = list;
    }
    if (const auto reason = fields.string(L("finish_reason"))) {
        choice.finishReason = chatFinishReasonFromString(*reason);
    }
    if (const auto logprobs = fields.object(L("logprobs"))) {
        choice.logprobs = ChatLogprobs::fromJson(*logprobs);
        if (!choice.logprobs) {
            return std::nullopt;
        }
    }
    if (!fields.ok() || !message.ok()) {
        return std::nullopt;
    }
    return choice;
}

std::optional<ChatCompletion::Usage> usageFromJson(const QJsonObject &object)
{
    JsonFields fields(object);
    ChatCompletion::Usage usage;
    usage.completionTokens = fields.integer(L("completion_tokens")).value_or(0);
    usage.promptTokens = fields.integer(L("prompt_tokens")).value_or(0);
    usage.totalTokens = fields.integer(L("total_tokens")).value_or(0);
    if (const auto details = fields.object(L("completion_tokens_details"))) {
        JsonFields inner(*details);
        usage.completionTokensDetails
            = ChatCompletion::CompletionTokensDetails { inner.integer(L("reasoning_tokens")) };
        if (!inner.ok()) {
            return std::nullopt;
        }
    }
    if (const auto details = fields.object(L("prompt_tokens_details"))) {
        JsonFields inner(*details);
        usage.promptTokensDetails = ChatCompletion::PromptTokensDetails { inner.integer(L("cached_tokens")) };
        if (!inner.ok()) {
            return std::nullopt;
        }
    }
    if (!fields.ok()) {
        return std::nullopt;
    }
    return usage;
}

} // namespace

std::optional<ChatCompletion> ChatCompletion::fromJson(const QJsonObject &object)
{
    JsonFields fields(object);
    ChatCompletion completion;
    completion.id = fields.string(L("id")).value_or(QString());
    for (const QJsonValue &entry : fields.require(fields.array(L("choices")))) {
        auto choice = choiceFromJson(entry);
        if (!choice) {
            return std::nullopt;
        }
        completion.choices.append(*std::move(choice));
    }
    completion.created = fields.integer(L("created")).value_or(0);
    completion.model = fields.string(L("model")).value_or(QString());
    completion.serviceTier = fields.string(L("service_tier"));
    completion.systemFingerprint = fields.string(L("system_fingerprint"));
    completion.object = fields.string(L("object")).value_or(QString());
    if (const auto usage = fields.object(L("usage"))) {
        completion.usage = usageFromJson(*usage);
        if (!completion.usage) {
            return std::nullopt;
        }
    }
    if (!fields.ok()) {
        return std::nullopt;
    }
    return completion;
}

} // namespace zentrik
