#pragma once

#include <QJsonObject>
#include <QList>
#include <QString>

#include <optional>

namespace zentrik {

// Token log probabilities of a choice, as both whole replies and stream chunks carry them.
struct ChatLogprobs
{
    struct Token
    {
        QString token;
        double logprob = 0;
        std::optional<QList<int>> bytes;
        std::optional<QList<Token>> topLogprobs;

        friend bool operator==(const Token &, const Token &) = default;
    };

    std::optional<QList<Token>> content;
    std::optional<QList<Token>> refusal;

    // std::nullopt when the object does not have this shape.
    [[nodiscard]] static std::optional<ChatLogprobs> fromJson(const QJsonObject &object);

    friend bool operator==(const ChatLogprobs &, const ChatLogprobs &) = default;
};

} // namespace zentrik
