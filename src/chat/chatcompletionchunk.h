#pragma once

#include <QJsonObject>
#include <QList>
#include <QString>

#include <optional>

#include "chat/chatcompletion.h"
#include "chat/chatlogprobs.h"

namespace zentrik {

// One event of a streamed reply: the shape of a whole reply, with a delta in place of each
// choice's message and every part of it optional.
struct ChatCompletionChunk
{
    struct ToolCall
    {
        std::optional<qint64> index;
        std::optional<QString> id;
        std::optional<QString> type;
        std::optional<QString> functionName;
        std::optional<QString> functionArguments;

        friend bool operator==(const ToolCall &, const ToolCall &) = default;
    };

    struct Delta
    {
        std::optional<QString> role;
        std::optional<QString> content;
        std::optional<QString> refusal;
        std::optional<QList<ToolCall>> toolCalls;

        friend bool operator==(const Delta &, const Delta &) = default;
    };

    struct Choice
    {
        qint64 index = 0;
        Delta delta;
        std::optional<ChatFinishReason> finishReason;
        std::optional<ChatLogprobs> logprobs;

        friend bool operator==(const Choice &, const Choice &) = default;
    };

    struct Usage
    {
        std::optional<qint64> completionTokens;
        std::optional<qint64> promptTokens;
        std::optional<qint64> totalTokens;
        std::optional<ChatCompletion::CompletionTokensDetails> completionTokensDetails;
        std::optional<ChatCompletion::PromptTokensDetails> promptTokensDetails;

        friend bool operator==(const Usage &, const Usage &) = default;
    };

    QString id;
    QList<Choice> choices;
    qint64 created = 0;
    QString model;
    std::optional<QString> serviceTier;
    std::optional<QString> systemFingerprint;
    QString object;
    std::optional<Usage> usage;

    // The text this chunk adds to the reply: the content of its first choice, if any.
    [[nodiscard]] std::optional<QString> text() const;
    // Whether any choice says why the reply ended.
    [[nodiscard]] bool hasFinishReason() const;

    // std::nullopt when the object is not a chunk ("choices" must be a list, and every
    // field that is present must have its type).
    [[nodiscard]] static std::optional<ChatCompletionChunk> fromJson(const QJsonObject &object);

    friend bool operator==(const ChatCompletionChunk &, const ChatCompletionChunk &) = default;
};

} // namespace zentrik
