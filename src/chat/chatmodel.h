#pragma once

#include <QJsonObject>
#include <QList>
#include <QString>

#include <optional>

namespace zentrik {

// The model list of a chat service.
struct ChatModel
{
    struct Entry
    {
        QString id;
        qint64 created = 0;
        QString object;
        QString ownedBy;

        friend bool operator==(const Entry &, const Entry &) = default;
    };

    QList<Entry> data;

    // std::nullopt unless "data" is a list of objects each with a string "id".
    [[nodiscard]] static std::optional<ChatModel> fromJson(const QJsonObject &object);

    friend bool operator==(const ChatModel &, const ChatModel &) = default;
};

} // namespace zentrik
