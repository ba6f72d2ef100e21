#pragma once

#include "fal/falerror.h"
#include "fal/falrequestlog.h"

#include <QByteArrayView>
#include <QJsonObject>
#include <QList>
#include <QString>

#include <variant>

namespace zentrik::fal {

// Where a queued request stands: waiting at a position, running (with its log so far), or
// finished with its result at responseUrl.
class QueueStatus
{
public:
    enum class State { inQueue, inProgress, completed };

    [[nodiscard]] static QueueStatus inQueue(int position, QString responseUrl);
    [[nodiscard]] static QueueStatus inProgress(QList<RequestLog> logs);
    [[nodiscard]] static QueueStatus completed(QList<RequestLog> logs, QString responseUrl);

    [[nodiscard]] State state() const { return m_state; }
    [[nodiscard]] bool isCompleted() const { return m_state == State::completed; }
    // inQueue: how many requests are ahead (0 is next).
    [[nodiscard]] int position() const { return m_position; }
    // inQueue and completed.
    [[nodiscard]] QString responseUrl() const { return m_responseUrl; }
    // inProgress and completed.
    [[nodiscard]] const QList<RequestLog> &logs() const { return m_logs; }

    // Decodes a status answer: "status" is "IN_QUEUE" (with "queue_position" and
    // "response_url"), "IN_PROGRESS" or "COMPLETED" (with "response_url"); "logs" may be
    // absent. Any other status value fails with "Invalid status value: " and the value.
    // Safe on arbitrary bytes.
    [[nodiscard]] static std::variant<QueueStatus, DecodingError> decode(QByteArrayView json);
    [[nodiscard]] static std::variant<QueueStatus, DecodingError> fromJson(const QJsonObject &object);

    friend bool operator==(const QueueStatus &, const QueueStatus &) = default;

private:
    QueueStatus() = default;

    State m_state = State::inQueue;
    int m_position = 0;
    QString m_responseUrl;
    QList<RequestLog> m_logs;
};

// The answer to a submission: the id that names the request in the queue.
struct QueueSubmitResult
{
    QString requestId;

    // "request_id"; std::nullopt when it is missing or not a string.
    [[nodiscard]] static std::optional<QueueSubmitResult> fromJson(const QJsonObject &object);
};

} // namespace zentrik::fal
