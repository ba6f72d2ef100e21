#include "fal/falpayload.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>
#include <limits>

namespace zentrik::fal {

Payload::Payload(QString value)
    : m_value(std::move(value))
{ }

Payload::Payload(const char *value)
    : m_value(QString::fromUtf8(value))
{ }

Payload::Payload(qint64 value)
    : m_value(value)
{ }

Payload::Payload(int value)
    : m_value(qint64(value))
{ }

Payload::Payload(bool value)
    : m_value(value)
{ }

Payload::Payload(double value)
    : m_value(value)
{ }

Payload::Payload(QDateTime value)
    : m_value(std::move(value))
{ }

Payload::Payload(QByteArray value)
    : m_value(std::move(value))
{ }

Payload::Payload(Array value)
    : m_value(std::move(value))
{ }

Payload::Payload(Dict value)
    : m_value(std::move(value))
{ }

std::optional<QString> Payload::toString() const
{
    if (const auto *text = std::get_if<QString>(&m_value)) {
        return *text;
    }
    return std::nullopt;
}

std::optional<qint64> Payload::toInteger() const
{
    if (const auto *number = std::get_if<qint64>(&m_value)) {
        return *number;
    }
    return std::nullopt;
}

std::optional<bool> Payload::toBool() const
{
    if (const auto *flag = std::get_if<bool>(&m_value)) {
        return *flag;
    }
    return std::nullopt;
}

Payload Payload::value(const QString &key) const
{
    if (const Dict *members = dict()) {
        return members->value(key);
    }
    return {};
}

Payload Payload::at(qsizetype index) const
{
    if (const Array *elements = array(); elements != nullptr && index >= 0 && size_t(index) < elements->size()) {
        return (*elements)[size_t(index)];
    }
    return {};
}

QString Payload::dataAddress(const QByteArray &bytes)
{
    return QStringLiteral("data:application/octet-stream;base64,") + QString::fromLatin1(bytes.toBase64());
}

QJsonValue Payload::toJson() const
{
    switch (kind()) {
    case Kind::string:
        return std::get<QString>(m_value);
    case Kind::integer:
        return std::get<qint64>(m_value);
    case Kind::boolean:
        return std::get<bool>(m_value);
    case Kind::number: {
        // JSON has no NaN or infinity; they go out as null rather than as invalid text.
        const double number = std::get<double>(m_value);
        return std::isfinite(number) ? QJsonValue(number) : QJsonValue(QJsonValue::Null);
    }
    case Kind::date:
        return std::get<QDateTime>(m_value).toUTC().toString(Qt::ISODateWithMs);
    case Kind::data:
        return dataAddress(std::get<QByteArray>(m_value));
    case Kind::array: {
        QJsonArray elements;
        for (const Payload &element : std::get<Array>(m_value)) {
            elements.append(element.toJson());
        }
        return elements;
    }
    case Kind::dict: {
        QJsonObject members;
        const Dict &dict = std::get<Dict>(m_value);
        for (auto it = dict.cbegin(); it != dict.cend(); ++it) {
            members.insert(it.key(), it.value().toJson());
        }
        return members;
    }
    case Kind::nilValue:
        break;
    }
    return { QJsonValue::Null };
}

Payload Payload::fromJson(const QJsonValue &json)
{
    switch (json.type()) {
    case QJsonValue::String:
        return json.toString();
    case QJsonValue::Bool:
        return json.toBool();
    case QJsonValue::Double: {
        // Whole numbers a double holds exactly are integers; everything else stays a double.
        const double number = json.toDouble();
        constexpr double limit = 9007199254740992.0; // 2^53
        if (std::trunc(number) == number && std::fabs(number) <= limit) {
            return json.toInteger();
        }
        return number;
    }
    case QJsonValue::Array: {
        Array elements;
        const QJsonArray array = json.toArray();
        elements.reserve(size_t(array.size()));
        for (const auto &element : array) {
            elements.push_back(fromJson(element));
        }
        return elements;
    }
    case QJsonValue::Object: {
        Dict members;
        const QJsonObject object = json.toObject();
        for (auto it = object.constBegin(); it != object.constEnd(); ++it) {
            members.insert(it.key(), fromJson(it.value()));
        }
        return members;
    }
    case QJsonValue::Null:
    case QJsonValue::Undefined:
        break;
    }
    return {};
}

QByteArray Payload::toJsonBytes() const
{
    const QJsonValue json = toJson();
    if (json.isObject()) {
        return QJsonDocument(json.toObject()).toJson(QJsonDocument::Compact);
    }
    if (json.isArray()) {
        return QJsonDocument(json.toArray()).toJson(QJsonDocument::Compact);
    }
    // A scalar: wrap it in an array and take the text between the brackets.
    const QByteArray wrapped = QJsonDocument(QJsonArray { json }).toJson(QJsonDocument::Compact);
    return wrapped.mid(1, wrapped.size() - 2);
}

std::optional<Payload> Payload::fromJsonBytes(const QByteArray &bytes)
{
    // Qt's parser takes only arrays and objects at the top; a scalar is parsed inside an array.
    QJsonParseError error {};
    const QByteArray trimmed = bytes.trimmed();
    if (trimmed.startsWith('{') || trimmed.startsWith('[')) {
        const QJsonDocument document = QJsonDocument::fromJson(trimmed, &error);
        if (error.error != QJsonParseError::NoError) {
            return std::nullopt;
        }
        return fromJson(document.isObject() ? QJsonValue(document.object()) : QJsonValue(document.array()));
    }
    const QJsonDocument wrapped = QJsonDocument::fromJson('[' + trimmed + ']', &error);
    if (error.error != QJsonParseError::NoError || wrapped.array().size() != 1) {
        return std::nullopt;
    }
    return fromJson(wrapped.array().first());
}

} // namespace zentrik::fal
