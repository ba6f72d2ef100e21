#pragma once

#include "fal/falerror.h"

#include <QJsonValue>
#include <QList>
#include <QString>

#include <variant>

namespace zentrik::fal {

// One line of an application's log while it runs a request.
struct RequestLog
{
    enum class Level { stderrLine, stdoutLine, error, info, warn, debug };
    struct Labels
    {
        Level level = Level::info;
        friend bool operator==(const Labels &, const Labels &) = default;
    };

    QString message;
    QString timestamp;
    Labels labels;

    // The wire names "STDERR", "STDOUT", "ERROR", "INFO", "WARN", "DEBUG".
    [[nodiscard]] static QString levelName(Level level);

    // A "logs" member: absent or null is an empty list.
    [[nodiscard]] static std::variant<QList<RequestLog>, DecodingError> decodeList(const QJsonValue &logs);

    friend bool operator==(const RequestLog &, const RequestLog &) = default;
};

} // namespace zentrik::fal
