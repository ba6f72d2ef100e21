#pragma once

#include <QString>

#include "net/transporterror.h"

namespace zentrik {

// Every failure of a model request, as a value handed once to the caller's completion.
// Each kind has a fixed user-facing message; the first two carry a detail appended to it.
class APIError
{
public:
    enum Kind {
        jsonParsingFailed,
        generalNetworkError,
        missingAPIKey,
        unsupportedModel,
        noData,
        invalidResponse,
        invalidRequestData,
        noInternetConnection,
        dnsResolutionFailed,
        requestTimedOut,
        connectionLost,
    };

    APIError(Kind kind, QString description = {}) // NOLINT(google-explicit-constructor): errors are values
        : m_kind(kind)
        , m_description(std::move(description))
    {
    }

    [[nodiscard]] Kind kind() const { return m_kind; }
    [[nodiscard]] QString description() const { return m_description; }
    // The text a tool shows in place of a reply.
    [[nodiscard]] QString message() const;

    // The transport's numeric codes, as the platform's URL loading system numbers them;
    // codes outside the mapped few become generalNetworkError with the transport's text.
    [[nodiscard]] static APIError fromTransportCode(int code, const QString &transportDescription);
    // The same mapping for this program's own transport failures: not connected, host not
    // found, timed out and connection lost keep their cases, anything else (a refused
    // connection, a TLS failure, …) is generalNetworkError with the transport's text.
    [[nodiscard]] static APIError fromTransport(const TransportError &error);

    friend bool operator==(const APIError &a, const APIError &b)
    {
        return a.m_kind == b.m_kind && a.m_description == b.m_description;
    }

private:
    Kind m_kind;
    QString m_description;
};

// Appended by the conversational tools to the message of a failed request.
[[nodiscard]] QString connectionTip();

} // namespace zentrik
