#include "chat/jsonfields.h"

#include <cmath>

namespace zentrik {

JsonFields::JsonFields(QJsonObject object)
    : m_object(std::move(object))
{ }

QJsonValue JsonFields::present(QLatin1StringView key) const
{
    return m_object.value(key);
}

std::optional<QJsonValue> JsonFields::typed(QLatin1StringView key, QJsonValue::Type type)
{
    const QJsonValue value = present(key);
    if (value.isUndefined() || value.isNull()) {
        return std::nullopt;
    }
    if (value.type() != type) {
        m_ok = false;
        return std::nullopt;
    }
    return value;
}

std::optional<QString> JsonFields::string(QLatin1StringView key)
{
    const std::optional<QJsonValue> value = typed(key, QJsonValue::String);
    return value ? std::optional(value->toString()) : std::nullopt;
}

std::optional<qint64> JsonFields::integer(QLatin1StringView key)
{
    const std::optional<QJsonValue> value = typed(key, QJsonValue::Double);
    if (!value) {
        return std::nullopt;
    }
    const double number = value->toDouble();
    if (std::trunc(number) != number) {
        m_ok = false;
        return std::nullopt;
    }
    return value->toInteger();
}

std::optional<double> JsonFields::number(QLatin1StringView key)
{
    const std::optional<QJsonValue> value = typed(key, QJsonValue::Double);
    return value ? std::optional(value->toDouble()) : std::nullopt;
}

std::optional<bool> JsonFields::boolean(QLatin1StringView key)
{
    const std::optional<QJsonValue> value = typed(key, QJsonValue::Bool);
    return value ? std::optional(value->toBool()) : std::nullopt;
}

std::optional<QJsonObject> JsonFields::object(QLatin1StringView key)
{
    const std::optional<QJsonValue> value = typed(key, QJsonValue::Object);
    return value ? std::optional(value->toObject()) : std::nullopt;
}

std::optional<QJsonArray> JsonFields::array(QLatin1StringView key)
{
    const std::optional<QJsonValue> value = typed(key, QJsonValue::Array);
    return value ? std::optional(value->toArray()) : std::nullopt;
}

} // namespace zentrik
