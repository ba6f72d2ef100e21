#include "inputfield.h"

namespace zentrik {

QString InputField::typeName(Type type)
{
    switch (type) {
    case Type::Text:
        return QStringLiteral("text");
    case Type::TextArea:
        return QStringLiteral("textarea");
    case Type::Select:
        return QStringLiteral("select");
    }
    return {};
}

std::optional<InputField::Type> InputField::typeFromName(const QString &name)
{
    for (Type type : { Type::Text, Type::TextArea, Type::Select }) {
        if (typeName(type) == name) {
            return type;
        }
    }
    return std::nullopt;
}

InputField InputField::text(const QString &label, const QString &placeholder)
{
    return { QUuid::createUuid(), Type::Text, label, placeholder, {} };
}

InputField InputField::textArea(const QString &label, const QString &placeholder)
{
    return { QUuid::createUuid(), Type::TextArea, label, placeholder, {} };
}

InputField InputField::select(const QString &label, const QStringList &options)
{
    return { QUuid::createUuid(), Type::Select, label, {}, options };
}

} // namespace zentrik
