// One parser for the two record shapes of the chat completions protocol. A whole reply and
// a streamed chunk share their envelope, choices, tool calls and token counts; they differ
// only in that a chunk carries a delta in place of the message and leaves every part of it
// optional. The templates below read either shape, so a fix to one reaches both.
#include "chat/chatcompletion.h"
#include "chat/chatcompletionchunk.h"
#include "chat/jsonfields.h"

namespace zentrik {

namespace {

using L = QLatin1StringView;

// A field the record requires to be a value fills it with the value or the type's default;
// a field the record keeps optional keeps its absence.
template<typename T> void assign(T &target, std::optional<T> value)
{
    target = std::move(value).value_or(T {});
}

template<typename T> void assign(std::optional<T> &target, std::optional<T> value)
{
    target = std::move(value);
}

// A whole reply's tool call must name its function; a chunk's may leave it (and everything
// else) for a later chunk, and says which call it continues by its index.
template<typename ToolCall> std::optional<ToolCall> toolCallFromJson(const QJsonValue &value)
{
    constexpr bool partial = requires(ToolCall call)
    {
        call.index;
    };
    if (!value.isObject()) {
        return std::nullopt;
    }
    JsonFields fields(value.toObject());
    ToolCall call;
    if constexpr (partial) {
        call.index = fields.integer(L("index"));
    }
    assign(call.id, fields.string(L("id")));
    assign(call.type, fields.string(L("type")));
    const std::optional<QJsonObject> function = fields.object(L("function"));
    if (!partial && !function) {
        return std::nullopt;
    }
    if (function) {
        JsonFields inner(*function);
        assign(call.functionName, inner.string(L("name")));
        assign(call.functionArguments, inner.string(L("arguments")));
        if (!inner.ok()) {
            return std::nullopt;
        }
    }
    if (!fields.ok()) {
        return std::nullopt;
    }
    return call;
}

// Every entry through parse, or std::nullopt when one is not of its shape.
template<typename T>
std::optional<QList<T>> listFromJson(const QJsonArray &array, std::optional<T> (*parse)(const QJsonValue &))
{
    QList<T> list;
    list.reserve(array.size());
    for (const QJsonValue entry : array) {
        auto item = parse(entry);
        if (!item) {
            return std::nullopt;
        }
        list.append(*std::move(item));
    }
    return list;
}

// The message of a whole reply ("message", required) or the delta of a chunk ("delta",
// optional): role, content, refusal and tool calls.
template<typename Body> bool readBody(JsonFields &fields, QLatin1StringView key, bool required, Body &body)
{
    const std::optional<QJsonObject> object = fields.object(key);
    if (required && !object) {
        return false;
    }
    JsonFields inner(object.value_or(QJsonObject()));
    assign(body.role, inner.string(L("role")));
    body.content = inner.string(L("content"));
    body.refusal = inner.string(L("refusal"));
    using Call = typename std::remove_reference_t<decltype(*body.toolCalls)>::value_type;
    if (const auto calls = inner.array(L("tool_calls"))) {
        body.toolCalls = listFromJson<Call>(*calls, &toolCallFromJson<Call>);
        if (!body.toolCalls) {
            return false;
        }
    }
    return inner.ok();
}

template<typename Choice> std::optional<Choice> choiceFromJson(const QJsonValue &value)
{
    if (!value.isObject()) {
        return std::nullopt;
    }
    JsonFields fields(value.toObject());
    Choice choice;
    choice.index = fields.integer(L("index")).value_or(0);
    bool bodyOk = true;
    if constexpr (requires(Choice c) { c.delta; }) {
        bodyOk = readBody(fields, L("delta"), false, choice.delta);
    } else {
        bodyOk = readBody(fields, L("message"), true, choice.message);
    }
    if (!bodyOk) {
        return std::nullopt;
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
    if (!fields.ok()) {
        return std::nullopt;
    }
    return choice;
}

template<typename Usage> std::optional<Usage> usageFromJson(const QJsonObject &object)
{
    JsonFields fields(object);
    Usage usage;
    assign(usage.completionTokens, fields.integer(L("completion_tokens")));
    assign(usage.promptTokens, fields.integer(L("prompt_tokens")));
    assign(usage.totalTokens, fields.integer(L("total_tokens")));
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

template<typename Record> std::optional<Record> recordFromJson(const QJsonObject &object)
{
    using Choice = typename decltype(Record::choices)::value_type;
    using Usage = typename decltype(Record::usage)::value_type;
    JsonFields fields(object);
    Record record;
    record.id = fields.string(L("id")).value_or(QString());
    auto choices = listFromJson<Choice>(fields.require(fields.array(L("choices"))), &choiceFromJson<Choice>);
    if (!choices) {
        return std::nullopt;
    }
    record.choices = *std::move(choices);
    record.created = fields.integer(L("created")).value_or(0);
    record.model = fields.string(L("model")).value_or(QString());
    record.serviceTier = fields.string(L("service_tier"));
    record.systemFingerprint = fields.string(L("system_fingerprint"));
    record.object = fields.string(L("object")).value_or(QString());
    if (const auto usage = fields.object(L("usage"))) {
        record.usage = usageFromJson<Usage>(*usage);
        if (!record.usage) {
            return std::nullopt;
        }
    }
    if (!fields.ok()) {
        return std::nullopt;
    }
    return record;
}

} // namespace

std::optional<ChatCompletion> ChatCompletion::fromJson(const QJsonObject &object)
{
    return recordFromJson<ChatCompletion>(object);
}

std::optional<ChatCompletionChunk> ChatCompletionChunk::fromJson(const QJsonObject &object)
{
    return recordFromJson<ChatCompletionChunk>(object);
}

} // namespace zentrik
