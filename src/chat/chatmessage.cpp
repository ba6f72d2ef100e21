#include "chat/chatmessage.h"

#include <QJsonArray>

namespace zentrik {

ChatMessage::Content ChatMessage::Content::fromText(QString text)
{
    Content part;
    part.type = Type::text;
    part.text = std::move(text);
    return part;
}

ChatMessage::Content ChatMessage::Content::fromImage(QString url, ImageDetail detail)
{
    Content part;
    part.type = Type::image;
    part.imageUrl = std::move(url);
    part.detail = detail;
    return part;
}

QJsonObject ChatMessage::Content::toJson() const
{
    if (type == Type::text) {
        return { { QStringLiteral("type"), QStringLiteral("text") }, { QStringLiteral("text"), text } };
    }
    QString detailName;
    switch (detail) {
    case ImageDetail::high:
        detailName = QStringLiteral("high");
        break;
    case ImageDetail::low:
        detailName = QStringLiteral("low");
        break;
    case ImageDetail::automatic:
        detailName = QStringLiteral("auto");
        break;
    }
    return { { QStringLiteral("type"), QStringLiteral("image_url") },
        { QStringLiteral("image_url"),
            QJsonObject { { QStringLiteral("url"), imageUrl }, { QStringLiteral("detail"), detailName } } } };
}

ChatMessage::ChatMessage(Role role, QList<Content> content, std::optional<QString> name)
    : role(role)
    , content(std::move(content))
    , name(std::move(name))
{ }

ChatMessage::ChatMessage(Role role, const QString &text)
    : role(role)
    , content { Content::fromText(text) }
{ }

QString ChatMessage::roleName(Role role)
{
    switch (role) {
    case Role::system:
        return QStringLiteral("system");
    case Role::user:
        return QStringLiteral("user");
    case Role::assistant:
        return QStringLiteral("assistant");
    }
    return {};
}

QJsonObject ChatMessage::toJson() const
{
    QJsonArray parts;
    for (const Content &part : content) {
        parts.append(part.toJson());
    }
    QJsonObject object { { QStringLiteral("role"), roleName(role) }, { QStringLiteral("content"), parts } };
    if (name) {
        object.insert(QStringLiteral("name"), *name);
    }
    return object;
}

} // namespace zentrik
