#pragma once

#include <QJsonObject>
#include <QList>
#include <QString>

#include <optional>

namespace zentrik {

// One message of a chat request: a role and an ordered list of text and image parts.
struct ChatMessage
{
    enum class Role { system, user, assistant };
    enum class ImageDetail { high, low, automatic };

    struct Content
    {
        enum class Type { text, image };

        Type type = Type::text;
        QString text;
        QString imageUrl;
        ImageDetail detail = ImageDetail::automatic;

        [[nodiscard]] static Content fromText(QString text);
        [[nodiscard]] static Content fromImage(QString url, ImageDetail detail = ImageDetail::automatic);
        [[nodiscard]] QJsonObject toJson() const;

        friend bool operator==(const Content &, const Content &) = default;
    };

    Role role = Role::user;
    QList<Content> content;
    std::optional<QString> name;

    ChatMessage() = default;
    ChatMessage(Role role, QList<Content> content, std::optional<QString> name = std::nullopt);
    // A message made from a plain string holds exactly one text part.
    ChatMessage(Role role, const QString &text);

    [[nodiscard]] QJsonObject toJson() const;
    [[nodiscard]] static QString roleName(Role role);

    friend bool operator==(const ChatMessage &, const ChatMessage &) = default;
};

} // namespace zentrik
