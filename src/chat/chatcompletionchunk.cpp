#include "chat/chatcompletionchunk.h"

#include "chat/jsonfields.h"

namespace zentrik {

namespace {

using L = QLatin1StringView;

std::optional<ChatCompletionChunk::ToolCall> toolCallFromJson(const QJsonValue &value)
{
    if (!value.isObject()) {
        return std::nullopt;
    }
    JsonFields fields(value.toObject());
    ChatCompletionChunk::ToolCall call;
    call.index = fields.integer(L("index"));
    call.id = fields.string(L("id"));
    call.type = fields.string(L("type"));
    if (const auto function = fields.object(L("function"))) {
        JsonFields inner(*function);
        call.functionName = inner.string(L("name"));
        call.functionArguments = inner.string(L("arguments"));
        if (!inner.ok()) {
            return std::nullopt;
        }
    }
    if (!fields.ok()) {
        return std::nullopt;
    }
    return call;
}

std::optional<ChatCompletionChunk::Choice> choiceFromJson(const QJsonValue &value)
{
    if (!value.isObject()) {
        return std::nullopt;
    }
    JsonFields fields(value.toObject());
    ChatCompletionChunk::Choice choice;
    choice.index = fields.integer(L("index")).value_or(0);
    JsonFields delta(fields.object(L("delta")).value_or(QJsonObject()));
    choice.delta.role = delta.string(L("role"));
    choice.delta.content = delta.string(L("content"));
    choice.delta.refusal = delta.string(L("refusal"));
    if (const auto calls = delta.array(L("tool_calls"))) {
        QList<ChatCompletionChunk::ToolCall> list;
        for (const QJsonValue &entry : *calls) {
            auto call = toolCallFromJson(entry);
            if (!call) {
                return std::nullopt;
            }
            list.append(*std::move(call));
        }
        choice.delta.toolCalls = list;
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
    if (!fields.ok() || !delta.ok()) {
        return std::nullopt;
    }
    return choice;
}

std::optional<ChatCompletionChunk::Usage> usageFromJson(const QJsonObject &object)
{
    JsonFields fields(object);
    ChatCompletionChunk::Usage usage;
    usage.completionTokens = fields.integer(L("completion_tokens"));
    usage.promptTokens = fields.integer(L("prompt_tokens"));
    usage.totalTokens = fields.integer(L("total_tokens"));
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

std::optional<QString> ChatCompletionChunk::text() const
{
    if (choices.isEmpty()) {
        return std::nullopt;
    }
    return choices.constFirst().delta.content;
}

bool ChatCompletionChunk::hasFinishReason() const
{
    return std::any_of(
        choices.cbegin(), choices.cend(), [](const Choice &choice) { return choice.finishReason.has_value(); });
}

std::optional<ChatCompletionChunk> ChatCompletionChunk::fromJson(const QJsonObject &object)
{
    JsonFields fields(object);
    ChatCompletionChunk chunk;
    chunk.id = fields.string(L("id")).value_or(QString());
    for (const QJsonValue &entry : fields.require(fields.array(L("choices")))) {
        auto choice = choiceFromJson(entry);
        if (!choice) {
            return std::nullopt;
        }
        chunk.choices.append(*std::move(choice));
    }
    chunk.created = fields.integer(L("created")).value_or(0);
    chunk.model = fields.string(L("model")).value_or(QString());
    chunk.serviceTier = fields.string(L("service_tier"));
    chunk.systemFingerprint = fields.string(L("system_fingerprint"));
    chunk.object = fields.string(L("object")).value_or(QString());
    if (const auto usage = fields.object(L("usage"))) {
        chunk.usage = usageFromJson(*usage);
        if (!chunk.usage) {
            return std::nullopt;
        }
    }
    if (!fields.ok()) {
        return std::nullopt;
    }
    return chunk;
}

} // namespace zentrik
