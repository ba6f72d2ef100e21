#include "chat/chatoptions.h"

#include <QJsonArray>

namespace zentrik {

namespace {

QJsonObject toJson(const ChatOptions::ResponseFormat &format)
{
    switch (format.type) {
    case ChatOptions::ResponseFormat::Type::text:
        return { { QStringLiteral("type"), QStringLiteral("text") } };
    case ChatOptions::ResponseFormat::Type::jsonObject:
        return { { QStringLiteral("type"), QStringLiteral("json_object") } };
    case ChatOptions::ResponseFormat::Type::jsonSchema:
        break;
    }
    QJsonObject object { { QStringLiteral("type"), QStringLiteral("json_schema") } };
    if (format.jsonSchema) {
        const ChatOptions::JsonSchema &schema = *format.jsonSchema;
        QJsonObject inner { { QStringLiteral("name"), schema.name } };
        if (schema.description) {
            inner.insert(QStringLiteral("description"), *schema.description);
        }
        if (schema.schema) {
            inner.insert(QStringLiteral("schema"), *schema.schema);
        }
        if (schema.strict) {
            inner.insert(QStringLiteral("strict"), *schema.strict);
        }
        object.insert(QStringLiteral("json_schema"), inner);
    }
    return object;
}

QJsonObject toJson(const ChatOptions::Tool &tool)
{
    QJsonObject function { { QStringLiteral("name"), tool.function.name } };
    if (tool.function.description) {
        function.insert(QStringLiteral("description"), *tool.function.description);
    }
    if (tool.function.parameters) {
        function.insert(QStringLiteral("parameters"), *tool.function.parameters);
    }
    if (tool.function.strict) {
        function.insert(QStringLiteral("strict"), *tool.function.strict);
    }
    return { { QStringLiteral("type"), tool.type }, { QStringLiteral("function"), function } };
}

QJsonValue toJson(const ChatOptions::ToolChoice &choice)
{
    switch (choice.mode) {
    case ChatOptions::ToolChoice::Mode::none:
        return QStringLiteral("none");
    case ChatOptions::ToolChoice::Mode::automatic:
        return QStringLiteral("auto");
    case ChatOptions::ToolChoice::Mode::function:
        break;
    }
    return QJsonObject { { QStringLiteral("type"), QStringLiteral("function") },
        { QStringLiteral("function"), QJsonObject { { QStringLiteral("name"), choice.functionName } } } };
}

template<typename T> void put(QJsonObject &body, const char *key, const std::optional<T> &value)
{
    if (value) {
        body.insert(QLatin1StringView(key), QJsonValue(*value));
    }
}

} // namespace

void ChatOptions::writeTo(QJsonObject &body) const
{
    put(body, "frequency_penalty", frequencyPenalty);
    if (logitBias) {
        QJsonObject bias;
        for (auto it = logitBias->cbegin(); it != logitBias->cend(); ++it) {
            bias.insert(it.key(), it.value());
        }
        body.insert(QStringLiteral("logit_bias"), bias);
    }
    put(body, "logprobs", logprobs);
    put(body, "top_logprobs", topLogprobs);
    put(body, "max_completion_tokens", maxCompletionTokens);
    put(body, "n", n);
    put(body, "presence_penalty", presencePenalty);
    if (responseFormat) {
        body.insert(QStringLiteral("response_format"), toJson(*responseFormat));
    }
    put(body, "seed", seed);
    put(body, "service_tier", serviceTier);
    if (stop) {
        body.insert(QStringLiteral("stop"), QJsonArray::fromStringList(*stop));
    }
    put(body, "temperature", temperature);
    put(body, "top_p", topP);
    if (tools) {
        QJsonArray list;
        for (const Tool &tool : *tools) {
            list.append(toJson(tool));
        }
        body.insert(QStringLiteral("tools"), list);
    }
    if (toolChoice) {
        body.insert(QStringLiteral("tool_choice"), toJson(*toolChoice));
    }
    put(body, "parallel_tool_calls", parallelToolCalls);
    put(body, "user", user);
}

} // namespace zentrik
