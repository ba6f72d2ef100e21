#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QJsonValue>
#include <QMap>
#include <QString>

#include <optional>
#include <variant>
#include <vector>

namespace zentrik::fal {

// The dynamic value that carries a fal application's inputs and results. Every JSON value
// has exactly one Payload and back: strings, whole numbers, other numbers, booleans, arrays,
// objects and null. Dates and bytes exist only on the way out: a date is sent as its ISO 8601
// text (UTC, milliseconds), bytes as a Base64 data address.
class Payload
{
public:
    enum class Kind { string, integer, boolean, number, date, data, array, dict, nilValue };
    using Array = std::vector<Payload>;
    using Dict = QMap<QString, Payload>;

    Payload() = default; // nilValue
    // NOLINTBEGIN(google-explicit-constructor): a payload is written like the value it holds
    Payload(QString value);
    Payload(const char *value);
    Payload(qint64 value);
    Payload(int value);
    Payload(bool value);
    Payload(double value);
    Payload(QDateTime value);
    Payload(QByteArray value);
    Payload(Array value);
    Payload(Dict value);
    // NOLINTEND(google-explicit-constructor)

    [[nodiscard]] Kind kind() const { return Kind(m_value.index()); }
    [[nodiscard]] bool isNil() const { return kind() == Kind::nilValue; }

    // The value when it is of that kind.
    [[nodiscard]] std::optional<QString> toString() const;
    [[nodiscard]] std::optional<qint64> toInteger() const;
    [[nodiscard]] std::optional<bool> toBool() const;
    [[nodiscard]] const Array *array() const { return std::get_if<Array>(&m_value); }
    [[nodiscard]] const Dict *dict() const { return std::get_if<Dict>(&m_value); }

    // A member of a dict or an element of an array; nil when there is none.
    [[nodiscard]] Payload value(const QString &key) const;
    [[nodiscard]] Payload at(qsizetype index) const;

    [[nodiscard]] QJsonValue toJson() const;
    [[nodiscard]] static Payload fromJson(const QJsonValue &json);
    // The compact JSON text of a payload (null for nilValue).
    [[nodiscard]] QByteArray toJsonBytes() const;
    // std::nullopt when the bytes are not JSON.
    [[nodiscard]] static std::optional<Payload> fromJsonBytes(const QByteArray &bytes);

    // How bytes travel inside a JSON value.
    [[nodiscard]] static QString dataAddress(const QByteArray &bytes);

    friend bool operator==(const Payload &a, const Payload &b) { return a.m_value == b.m_value; }

private:
    // The order of the alternatives is the order of Kind.
    std::variant<QString, qint64, bool, double, QDateTime, QByteArray, Array, Dict, std::monostate> m_value {
        std::monostate {}
    };
};

} // namespace zentrik::fal
