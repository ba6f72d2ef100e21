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

std::optional<QString> JsonFields::string(QLatin1StringView key)
{
    const QJsonValue value = present(key);
    if (value.isUndefined() || value.isNull()) {
        return std::nullopt;
    }
    if (!value.isString()) {
        m_ok = false;
        return std::nullopt;
    }
    return value.toString();
}

std::optional<qint64> JsonFields::integer(QLatin1StringView key)
{
    const QJsonValue value = present(key);
    if (value.isUndefined() || value.isNull()) {
        return std::nullopt;
    }
    const double number = value.toDouble(std::nan(""));
    if (!value.isDouble() || std::trunc(number) != number) {
        m_ok = false;
        return std::nullopt;
    }
    return value.toInteger();
}

std::optional<double> JsonFields::number(QLatin1StringView key)
{
    const QJsonValue value = present(key);
    if (value.isUndefined() || value.isNull()) {
        return std::nullopt;
    }
    if (!value.isDouble()) {
        m_ok = false;
        return std::nullopt;
    }
    return value.toDouble();
}

std::optional<bool> JsonFields::boolean(QLatin1StringView key)
{
    const QJsonValue value = present(key);
    if (value.isUndefined() || value.isNull()) {
        return std::nullopt;
    }
    if (!value.isBool()) {
        m_ok = false;
        return std::nullopt;
    }
    return value.toBool();
}

std::optional<QJsonObject> JsonFields::object(QLatin1StringView key)
{
    const QJsonValue value = present(key);
    if (value.isUndefined() || value.isNull()) {
        return std::nullopt;
    }
    if (!value.isObject()) {
        m_ok = false;
        return std::nullopt;
    }
    return value.toObject();
}

std::optional<QJsonArray> JsonFields::array(QLatin1StringView key)
{
    const QJsonValue value = present(key);
    if (value.isUndefined() || value.isNull()) {
        return std::nullopt;
    }
    if (!value.isArray()) {
        m_ok = false;
        return std::nullopt;
    }
    return value.toArray();
}

} // namespace zentrik
