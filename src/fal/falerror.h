#pragma once

#include "fal/falpayload.h"
#include "net/transporterror.h"

#include <QString>

#include <optional>
#include <variant>

namespace zentrik::fal {

// What the fal service or the client itself refused.
class FalError
{
public:
    enum class Kind { httpError, invalidUrl, unauthorized, invalidAppId, invalidResultFormat, queueTimeout };

    [[nodiscard]] static FalError httpError(int status, QString message, std::optional<Payload> payload = {});
    [[nodiscard]] static FalError invalidUrl(QString url);
    [[nodiscard]] static FalError unauthorized(QString message);
    [[nodiscard]] static FalError invalidAppId(QString id);
    [[nodiscard]] static FalError invalidResultFormat();
    [[nodiscard]] static FalError queueTimeout();

    [[nodiscard]] Kind kind() const { return m_kind; }
    // httpError: the HTTP status.
    [[nodiscard]] int status() const { return m_status; }
    // httpError and unauthorized: the service's message.
    [[nodiscard]] QString message() const { return m_text; }
    // httpError: the decoded body, when it was JSON.
    [[nodiscard]] const std::optional<Payload> &payload() const { return m_payload; }
    // invalidUrl: the address; invalidAppId: the id.
    [[nodiscard]] QString url() const { return m_text; }
    [[nodiscard]] QString id() const { return m_text; }

    // One line for the user.
    [[nodiscard]] QString description() const;

    friend bool operator==(const FalError &, const FalError &) = default;

private:
    explicit FalError(Kind kind, QString text = {}, int status = 0, std::optional<Payload> payload = {});

    Kind m_kind;
    QString m_text;
    int m_status = 0;
    std::optional<Payload> m_payload;
};

// An answer that does not decode into the type asked for, with the decoder's own message
// (such as "Invalid status value: PAUSED").
struct DecodingError
{
    QString message;

    friend bool operator==(const DecodingError &, const DecodingError &) = default;
};

// Every way a fal operation can fail: the service or client refused, an answer did not
// decode, or the exchange never produced an answer.
using ClientError = std::variant<FalError, DecodingError, TransportError>;

[[nodiscard]] QString describe(const ClientError &error);

} // namespace zentrik::fal
