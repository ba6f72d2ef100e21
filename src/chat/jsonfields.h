#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QString>

#include <optional>

namespace zentrik {

// Reads the fields of one JSON object into typed values, remembering whether every field
// had the type the record expects. A missing field or a null counts as absent; a present
// field of the wrong type makes the whole record invalid.
class JsonFields
{
public:
    explicit JsonFields(QJsonObject object);

    [[nodiscard]] std::optional<QString> string(QLatin1StringView key);
    [[nodiscard]] std::optional<qint64> integer(QLatin1StringView key);
    [[nodiscard]] std::optional<double> number(QLatin1StringView key);
    [[nodiscard]] std::optional<bool> boolean(QLatin1StringView key);
    [[nodiscard]] std::optional<QJsonObject> object(QLatin1StringView key);
    [[nodiscard]] std::optional<QJsonArray> array(QLatin1StringView key);

    // Marks the record invalid (a required field is missing, say).
    void fail() { m_ok = false; }
    // Returns the value, or marks the record invalid when it is absent.
    template<typename T> T require(std::optional<T> value)
    {
        if (!value) {
            m_ok = false;
            return T {};
        }
        return *std::move(value);
    }

    [[nodiscard]] bool ok() const { return m_ok; }

private:
    [[nodiscard]] QJsonValue present(QLatin1StringView key) const;
    // The field when it has the type; nothing when it is absent or null, and nothing with
    // the record made invalid when it has another type.
    [[nodiscard]] std::optional<QJsonValue> typed(QLatin1StringView key, QJsonValue::Type type);

    QJsonObject m_object;
    bool m_ok = true;
};

} // namespace zentrik
