#include "fal/falrequestlog.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonObject>

#include <array>

namespace zentrik::fal {

namespace {

constexpr std::array<std::pair<RequestLog::Level, const char *>, 6> levelNames { {
    { RequestLog::Level::stderrLine, "STDERR" },
    { RequestLog::Level::stdoutLine, "STDOUT" },
    { RequestLog::Level::error, "ERROR" },
    { RequestLog::Level::info, "INFO" },
    { RequestLog::Level::warn, "WARN" },
    { RequestLog::Level::debug, "DEBUG" },
} };

DecodingError missing(const char *key)
{
    return { QCoreApplication::translate("fal", "Missing or mistyped value for key: %1").arg(QLatin1String(key)) };
}

std::variant<RequestLog, DecodingError> decodeOne(const QJsonValue &value)
{
    if (!value.isObject()) {
        return DecodingError { QCoreApplication::translate("fal", "A log entry is not an object") };
    }
    const QJsonObject object = value.toObject();
    RequestLog log;
    const QJsonValue message = object.value(QLatin1String("message"));
    const QJsonValue timestamp = object.value(QLatin1String("timestamp"));
    if (!message.isString()) {
        return missing("message");
    }
    if (!timestamp.isString()) {
        return missing("timestamp");
    }
    log.message = message.toString();
    log.timestamp = timestamp.toString();
    const QJsonValue level = object.value(QLatin1String("labels")).toObject().value(QLatin1String("level"));
    if (!level.isString()) {
        return missing("labels.level");
    }
    const QString name = level.toString();
    for (const auto &[candidate, wireName] : levelNames) {
        if (name == QLatin1String(wireName)) {
            log.labels.level = candidate;
            return log;
        }
    }
    return DecodingError { QCoreApplication::translate("fal", "Invalid log level: %1").arg(name) };
}

} // namespace

QString RequestLog::levelName(Level level)
{
    for (const auto &[candidate, wireName] : levelNames) {
        if (candidate == level) {
            return QLatin1String(wireName);
        }
    }
    return {};
}

std::variant<QList<RequestLog>, DecodingError> RequestLog::decodeList(const QJsonValue &logs)
{
    QList<RequestLog> list;
    if (logs.isUndefined() || logs.isNull()) {
        return list;
    }
    if (!logs.isArray()) {
        return missing("logs");
    }
    const QJsonArray array = logs.toArray();
    list.reserve(array.size());
    for (const auto &entry : array) {
        auto decoded = decodeOne(entry);
        if (auto *error = std::get_if<DecodingError>(&decoded)) {
            return std::move(*error);
        }
        list.append(std::get<RequestLog>(std::move(decoded)));
    }
    return list;
}

} // namespace zentrik::fal
