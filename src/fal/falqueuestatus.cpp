#include "fal/falqueuestatus.h"

#include <QCoreApplication>
#include <QJsonDocument>

#include <cmath>
#include <limits>

namespace zentrik::fal {

namespace {

DecodingError missing(const char *key)
{
    return { QCoreApplication::translate("fal", "Missing or mistyped value for key: %1").arg(QLatin1String(key)) };
}

} // namespace

QueueStatus QueueStatus::inQueue(int position, QString responseUrl)
{
    QueueStatus status;
    status.m_state = State::inQueue;
    status.m_position = position;
    status.m_responseUrl = std::move(responseUrl);
    return status;
}

QueueStatus QueueStatus::inProgress(QList<RequestLog> logs)
{
    QueueStatus status;
    status.m_state = State::inProgress;
    status.m_logs = std::move(logs);
    return status;
}

QueueStatus QueueStatus::completed(QList<RequestLog> logs, QString responseUrl)
{
    QueueStatus status;
    status.m_state = State::completed;
    status.m_logs = std::move(logs);
    status.m_responseUrl = std::move(responseUrl);
    return status;
}

std::variant<QueueStatus, DecodingError> QueueStatus::decode(QByteArrayView json)
{
    QJsonParseError parseError {};
    const QJsonDocument document = QJsonDocument::fromJson(json.toByteArray(), &parseError);
    if (parseError.error != QJsonParseError::NoError) {
        return DecodingError { parseError.errorString() };
    }
    if (!document.isObject()) {
        return DecodingError { QCoreApplication::translate("fal", "The status answer is not an object") };
    }
    return fromJson(document.object());
}

std::variant<QueueStatus, DecodingError> QueueStatus::fromJson(const QJsonObject &object)
{
    const QJsonValue status = object.value(QLatin1String("status"));
    if (!status.isString()) {
        return missing("status");
    }
    const QString value = status.toString();
    const QJsonValue responseUrl = object.value(QLatin1String("response_url"));

    if (value == QLatin1String("IN_QUEUE")) {
        const QJsonValue position = object.value(QLatin1String("queue_position"));
        const double number = position.toDouble(-1);
        if (!position.isDouble() || number < 0 || std::trunc(number) != number
            || number > std::numeric_limits<int>::max()) {
            return missing("queue_position");
        }
        if (!responseUrl.isString()) {
            return missing("response_url");
        }
        return inQueue(int(number), responseUrl.toString());
    }
    if (value != QLatin1String("IN_PROGRESS") && value != QLatin1String("COMPLETED")) {
        return DecodingError { QCoreApplication::translate("fal", "Invalid status value: ") + value };
    }

    auto logs = RequestLog::decodeList(object.value(QLatin1String("logs")));
    if (auto *error = std::get_if<DecodingError>(&logs)) {
        return std::move(*error);
    }
    auto list = std::get<QList<RequestLog>>(std::move(logs));
    if (value == QLatin1String("IN_PROGRESS")) {
        return inProgress(std::move(list));
    }
    if (!responseUrl.isString()) {
        return missing("response_url");
    }
    return completed(std::move(list), responseUrl.toString());
}

std::optional<QueueSubmitResult> QueueSubmitResult::fromJson(const QJsonObject &object)
{
    const QJsonValue requestId = object.value(QLatin1String("request_id"));
    if (!requestId.isString() || requestId.toString().isEmpty()) {
        return std::nullopt;
    }
    return QueueSubmitResult { requestId.toString() };
}

} // namespace zentrik::fal
