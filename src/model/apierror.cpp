#include "model/apierror.h"

#include <QCoreApplication>

namespace zentrik {

QString APIError::message() const
{
    switch (m_kind) {
    case jsonParsingFailed:
        return QCoreApplication::translate("APIError", "Failed to parse the server response: ") + m_description;
    case generalNetworkError:
        return QCoreApplication::translate("APIError", "A network error occurred: ") + m_description;
    case missingAPIKey:
        if (m_builtInKey) {
            return QCoreApplication::translate("APIError",
                "The free models need a key built into the program, and this build carries none. Please choose "
                "another model in Settings.");
        }
        return QCoreApplication::translate("APIError", "API key is missing. Please add it in Settings.");
    case unsupportedModel:
        return QCoreApplication::translate(
            "APIError", "Unsupported model selected. Please choose a valid model in Settings.");
    case noData:
        return QCoreApplication::translate("APIError", "No data received from the server.");
    case invalidResponse:
        return QCoreApplication::translate("APIError", "Invalid response received from the server.");
    case invalidRequestData:
        return QCoreApplication::translate("APIError", "Failed to prepare the request data.");
    case noInternetConnection:
        return QCoreApplication::translate("APIError", "No internet connection. Please check your network settings.");
    case dnsResolutionFailed:
        return QCoreApplication::translate(
            "APIError", "Unable to find the server. Please check your internet connection or try again later.");
    case requestTimedOut:
        return QCoreApplication::translate("APIError", "The request timed out. Please try again.");
    case connectionLost:
        return QCoreApplication::translate(
            "APIError", "The network connection was lost. Please check your internet connection and try again.");
    }
    return {};
}

APIError APIError::missingBuiltInKey()
{
    APIError error(missingAPIKey);
    error.m_builtInKey = true;
    return error;
}

APIError APIError::withDetails(QString details) const
{
    APIError error = *this;
    error.m_details = std::move(details);
    return error;
}

QString APIError::detailsLine() const
{
    // A stream's failure already carries the same words in its description.
    if (m_details.isEmpty() || message().contains(m_details)) {
        return {};
    }
    return QCoreApplication::translate("APIError", "\nDetails: %1").arg(m_details);
}

APIError APIError::fromTransport(const TransportError &error)
{
    switch (error.kind) {
    case TransportError::Kind::NotConnected:
        return noInternetConnection;
    case TransportError::Kind::HostNotFound:
        return dnsResolutionFailed;
    case TransportError::Kind::TimedOut:
        return requestTimedOut;
    case TransportError::Kind::ConnectionLost:
        return connectionLost;
    case TransportError::Kind::Other:
        break;
    }
    return { generalNetworkError, error.description };
}

QString connectionTip()
{
    return QCoreApplication::translate(
        "APIError", "\n\nTip: Check your internet connection or try restarting the app.");
}

} // namespace zentrik
