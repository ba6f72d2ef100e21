#pragma once

#include <QJsonObject>
#include <QList>
#include <QString>

#include <optional>

#include "chat/chatlogprobs.h"

namespace zentrik {

enum class ChatFinishReason { stop, length, toolCalls, contentFilter, other };

// "stop", "length", "tool_calls", "content_filter"; any other word is `other`.
[[nodiscard]] ChatFinishReason chatFinishReasonFromString(const QString &text);

// A whole reply of the chat completions protocol.
struct ChatCompletion
{
    struct ToolCall
    {
        QString id;
        QString type;
        QString functionName;
        QString functionArguments;

        friend bool operator==(const ToolCall &, const ToolCall &) = default;
    };

    struct Message
    {
        QString role;
        std::optional<QString> content;
        std::optional<QString> refusal;
        std::optional<QList<ToolCall>> toolCalls;

        friend bool operator==(const Message &, const Message &) = default;
    };

    struct Choice
    {
        qint64 index = 0;
        Message message;
        std::optional<ChatFinishReason> finishReason;
        std::optional<ChatLogprobs> logprobs;

        friend bool operator==(const Choice &, const Choice &) = default;
    };

    struct CompletionTokensDetails
    {
        std::optional<qint64> reasoningTokens;
        friend bool operator==(const CompletionTokensDetails &, const CompletionTokensDetails &) = default;
    };

    struct PromptTokensDetails
    {
        std::optional<qint64> cachedTokens;
        friend bool operator==(const PromptTokensDetails &, const PromptTokensDetails &) = default;
    };

    struct Usage
    {
        qint64 completionTokens = 0;
        qint64 promptTokens = 0;
        qint64 totalTokens = 0;
        std::optional<CompletionTokensDetails> completionTokensDetails;
        std::optional<PromptTokensDetails> promptTokensDetails;

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

    // std::nullopt when the object is not a reply of this shape ("choices" must be a list,
    // and every field that is present must have its type).
    [[nodiscard]] static std::optional<ChatCompletion> fromJson(const QJsonObject &object);

    friend bool operator==(const ChatCompletion &, const ChatCompletion &) = default;
};

} // namespace zentrik
