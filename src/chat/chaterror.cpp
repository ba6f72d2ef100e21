#include "chat/chaterror.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>

namespace zentrik {

QString ChatError::description() const
{
    if (kind == Kind::httpStatus) {
        return message.isEmpty() ? QStringLiteral("HTTP %1").arg(httpStatus)
                                 : QStringLiteral("HTTP %1: %2").arg(httpStatus).arg(message);
    }
    if (kind == Kind::transport && transport) {
        return transport->description;
    }
    return message;
}

ChatError ChatError::fromTransport(const TransportError &error)
{
    ChatError chatError;
    chatError.kind = Kind::transport;
    chatError.transport = error;
    chatError.message = error.description;
    return chatError;
}

ChatError ChatError::fromHttpStatus(int status, const QByteArray &body)
{
    ChatError error;
    error.kind = Kind::httpStatus;
    error.httpStatus = status;
    error.message = serviceMessage(body);
    return error;
}

ChatError ChatError::incompleteStream()
{
    ChatError error;
    error.kind = Kind::incomplete;
    error.message = QCoreApplication::translate("ChatError", "The connection closed before the reply was complete.");
    return error;
}

ChatError ChatError::invalidReply(const QString &detail)
{
    ChatError error;
    error.kind = Kind::invalidReply;
    error.message = detail;
    return error;
}

QString ChatError::serviceMessage(const QJsonObject &object)
{
    const QJsonValue error = object.value(QLatin1String("error"));
    if (error.isObject()) {
        return error.toObject().value(QLatin1String("message")).toString();
    }
    if (error.isString()) {
        return error.toString();
    }
    return object.value(QLatin1String("message")).toString();
}

QString ChatError::serviceMessage(const QByteArray &body)
{
    const QJsonDocument document = QJsonDocument::fromJson(body);
    return document.isObject() ? serviceMessage(document.object()) : QString();
}

} // namespace zentrik
