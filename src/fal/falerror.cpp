#include "fal/falerror.h"

#include <QCoreApplication>

namespace zentrik::fal {

FalError::FalError(Kind kind, QString text, int status, std::optional<Payload> payload)
    : m_kind(kind)
    , m_text(std::move(text))
    , m_status(status)
    , m_payload(std::move(payload))
{ }

FalError FalError::httpError(int status, QString message, std::optional<Payload> payload)
{
    return FalError(Kind::httpError, std::move(message), status, std::move(payload));
}

FalError FalError::invalidUrl(QString url)
{
    return FalError(Kind::invalidUrl, std::move(url));
}

FalError FalError::unauthorized(QString message)
{
    return FalError(Kind::unauthorized, std::move(message));
}

FalError FalError::invalidAppId(QString id)
{
    return FalError(Kind::invalidAppId, std::move(id));
}

FalError FalError::invalidResultFormat()
{
    return FalError(Kind::invalidResultFormat);
}

FalError FalError::queueTimeout()
{
    return FalError(Kind::queueTimeout);
}

QString FalError::description() const
{
    switch (m_kind) {
    case Kind::httpError:
        return m_text.isEmpty() ? QCoreApplication::translate("FalError", "HTTP %1").arg(m_status)
                                : QCoreApplication::translate("FalError", "HTTP %1: %2").arg(m_status).arg(m_text);
    case Kind::invalidUrl:
        return QCoreApplication::translate("FalError", "Invalid address: %1").arg(m_text);
    case Kind::unauthorized:
        return m_text.isEmpty() ? QCoreApplication::translate("FalError", "The fal key was refused.")
                                : QCoreApplication::translate("FalError", "The fal key was refused: %1").arg(m_text);
    case Kind::invalidAppId:
        return QCoreApplication::translate("FalError", "Invalid fal application id: %1").arg(m_text);
    case Kind::invalidResultFormat:
        return QCoreApplication::translate("FalError", "The fal result has an unexpected format.");
    case Kind::queueTimeout:
        return QCoreApplication::translate("FalError", "The fal queue did not finish the request in time.");
    }
    return {};
}

QString describe(const ClientError &error)
{
    if (const auto *fal = std::get_if<FalError>(&error)) {
        return fal->description();
    }
    if (const auto *decoding = std::get_if<DecodingError>(&error)) {
        return decoding->message;
    }
    return std::get<TransportError>(error).description;
}

} // namespace zentrik::fal
