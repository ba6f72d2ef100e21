#pragma once

#include "fal/falconfig.h"
#include "fal/falerror.h"
#include "fal/falpayload.h"
#include "net/httpclient.h"

#include <QPointer>
#include <QUrl>

#include <functional>
#include <variant>

namespace zentrik::fal {

// The value of a fal operation, or why there is none.
template<typename T> using Result = std::variant<T, ClientError>;

// Sends the requests of one configured fal client through the shared HTTP client: the
// application's address, the four headers, query items or a JSON body, the proxy, and the
// reading of the answer into a payload or an error.
class RequestSender
{
public:
    using Completion = std::function<void(const Result<Payload> &result)>;

    static constexpr std::chrono::milliseconds timeout { 60000 };
    static constexpr const char *clientName = "zentrik-fal-client";
    static constexpr const char *clientVersion = "0.1.0";

    RequestSender(HttpClient *http, ClientConfig config);

    [[nodiscard]] const ClientConfig &config() const { return m_config; }
    [[nodiscard]] HttpClient *http() const { return m_http; }

    // "123-my-app" becomes "123/my-app"; ids of the owner/name form stay as they are. An id
    // that cannot be a path of the address (empty, empty or dot segments, spaces, '?', '#')
    // is refused.
    [[nodiscard]] static std::variant<QString, FalError> normaliseAppId(const QString &id);
    // The application's address on the queue host, with the path of the options after it.
    [[nodiscard]] static std::variant<QUrl, FalError> applicationUrl(const QString &appId, const QString &path = {});
    // "<client>/0.1.0 - <operating system and its version>"
    [[nodiscard]] static QByteArray userAgent();

    // The request for target: for GET the input's top-level members become query items,
    // for other methods the input is the JSON body (none for nil).
    [[nodiscard]] std::variant<HttpRequest, FalError> build(
        const QUrl &target, HttpMethod method, const Payload &input) const;

    // Sends one request; the completion runs once, on the HTTP client's thread, never from
    // inside this call and never after context is destroyed.
    void send(
        const QUrl &target, HttpMethod method, const Payload &input, QObject *context, Completion completion) const;
    // The same for a request built elsewhere (the storage upload's PUT).
    void send(HttpRequest request, QObject *context, Completion completion) const;

    // Reads an answer: a transport failure as it is, 401 and 403 as unauthorized, any other
    // failed status as httpError, a successful body as a payload (nil when empty).
    [[nodiscard]] static Result<Payload> read(const HttpResult &result);
    // The service's message in an error body ("detail", "message" or "error"), else its text.
    [[nodiscard]] static QString errorMessage(const QByteArray &body);

    // Runs fn on the next turn of the event loop unless context (when given) is gone.
    void later(QObject *context, std::function<void()> fn) const;

private:
    QPointer<HttpClient> m_http;
    ClientConfig m_config;
};

} // namespace zentrik::fal
