#pragma once

#include <QJsonObject>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

#include <optional>

namespace zentrik {

// Generation options of a chat request. Every field is optional, and only the fields that
// are set appear in the request body, beside "model" and "messages".
struct ChatOptions
{
    struct JsonSchema
    {
        QString name;
        std::optional<QString> description;
        std::optional<QJsonObject> schema;
        std::optional<bool> strict;
    };

    struct ResponseFormat
    {
        enum class Type { text, jsonObject, jsonSchema };
        Type type = Type::text;
        // Only for Type::jsonSchema.
        std::optional<JsonSchema> jsonSchema;
    };

    struct Function
    {
        QString name;
        std::optional<QString> description;
        std::optional<QJsonObject> parameters;
        std::optional<bool> strict;
    };

    struct Tool
    {
        QString type = QStringLiteral("function");
        Function function;
    };

    struct ToolChoice
    {
        enum class Mode { none, automatic, function };
        Mode mode = Mode::automatic;
        // Only for Mode::function.
        QString functionName;
    };

    std::optional<double> frequencyPenalty;
    std::optional<QMap<QString, int>> logitBias;
    std::optional<bool> logprobs;
    std::optional<int> topLogprobs;
    std::optional<int> maxCompletionTokens;
    std::optional<int> n;
    std::optional<double> presencePenalty;
    std::optional<ResponseFormat> responseFormat;
    std::optional<qint64> seed;
    std::optional<QString> serviceTier;
    std::optional<QStringList> stop;
    std::optional<double> temperature;
    std::optional<double> topP;
    std::optional<QList<Tool>> tools;
    std::optional<ToolChoice> toolChoice;
    std::optional<bool> parallelToolCalls;
    std::optional<QString> user;

    // Adds the fields that are set to a request body, under their wire names.
    void writeTo(QJsonObject &body) const;
};

} // namespace zentrik
