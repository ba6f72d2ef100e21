#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>

#include <optional>

#include "net/transporterror.h"

namespace zentrik {

// Why a chat call or stream failed. The description names the HTTP status and the
// service's own message when there was one ("HTTP 401: Incorrect API key provided").
struct ChatError
{
    enum class Kind {
        transport, // no answer: see `transport`
        httpStatus, // a non-success status; `message` is the service's message, if any
        serviceError, // the service reported an error inside the stream
        invalidReply, // the answer was not what the protocol promises
        incomplete, // the stream ended before the reply was complete
    };

    Kind kind = Kind::invalidReply;
    int httpStatus = 0;
    std::optional<TransportError> transport;
    QString message;

    [[nodiscard]] QString description() const;

    [[nodiscard]] static ChatError fromTransport(const TransportError &error);
    [[nodiscard]] static ChatError fromHttpStatus(int status, const QByteArray &body);
    [[nodiscard]] static ChatError incompleteStream();
    [[nodiscard]] static ChatError invalidReply(const QString &detail);

    // The message a service put in an error body: {"error": {"message": …}}, {"error": "…"}
    // or {"message": …}; empty when the body holds none.
    [[nodiscard]] static QString serviceMessage(const QByteArray &body);
    [[nodiscard]] static QString serviceMessage(const QJsonObject &object);

    friend bool operator==(const ChatError &, const ChatError &) = default;
};

} // namespace zentrik
