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
    { }

    // A request that needs a key this build was meant to carry (the free models) and does
    // not: Settings has no field for it, so the message must not send the user there.
    [[nodiscard]] static APIError missingBuiltInKey();

    [[nodiscard]] Kind kind() const { return m_kind; }
    [[nodiscard]] QString description() const { return m_description; }
    // The text a tool shows in place of a reply.
    [[nodiscard]] QString message() const;
    // Whether the user can act on this error by entering a key in Settings.
    [[nodiscard]] bool isFixedInSettings() const { return m_kind == missingAPIKey && !m_builtInKey; }

    // What the provider itself said when its answer was refused ("HTTP 503: Service
    // unavailable"), for the user to act on; empty when it said nothing beyond a success.
    [[nodiscard]] QString details() const { return m_details; }
    [[nodiscard]] APIError withDetails(QString details) const;
    // "\nDetails: …" for a message that does not already say it; empty otherwise.
    [[nodiscard]] QString detailsLine() const;

    // A transport failure: not connected, host not found, timed out and connection lost
    // keep their cases, anything else (a refused connection, a TLS failure, …) is
    // generalNetworkError with the transport's text.
    [[nodiscard]] static APIError fromTransport(const TransportError &error);

    // Errors are equal when they say the same to the user; the provider's details are extra.
    friend bool operator==(const APIError &a, const APIError &b)
    {
        return a.m_kind == b.m_kind && a.m_description == b.m_description && a.m_builtInKey == b.m_builtInKey;
    }

private:
    Kind m_kind;
    QString m_description;
    QString m_details;
    bool m_builtInKey = false;
};

// Appended by the conversational tools to the message of a failed request.
[[nodiscard]] QString connectionTip();

} // namespace zentrik
