#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>

#include <functional>
#include <optional>
#include <variant>

namespace zentrik::fal {

// Where the fal key comes from.
class ClientCredentials
{
public:
    // One string holding id and secret ("id:secret"), as fal hands out keys.
    [[nodiscard]] static ClientCredentials keyPair(QString pair);
    [[nodiscard]] static ClientCredentials key(QString id, QString secret);
    // Asked again for every request.
    [[nodiscard]] static ClientCredentials custom(std::function<QString()> provide);
    // FAL_KEY, or FAL_KEY_ID and FAL_KEY_SECRET, read when a request is made.
    [[nodiscard]] static ClientCredentials fromEnv();

    // The text after "Key " in the authorization header; empty when there is none.
    [[nodiscard]] QString credential() const;

private:
    struct KeyPair
    {
        QString pair;
    };
    struct Key
    {
        QString id;
        QString secret;
    };
    struct Custom
    {
        std::function<QString()> provide;
    };
    struct FromEnv
    {
    };
    using Source = std::variant<KeyPair, Key, Custom, FromEnv>;

    explicit ClientCredentials(Source source)
        : m_source(std::move(source))
    { }

    Source m_source;
};

struct ClientConfig
{
    ClientCredentials credentials = ClientCredentials::fromEnv();
    // When set, every request goes to this address and names its real target in the
    // "x-fal-target-url" header.
    std::optional<QString> requestProxy;
};

enum class HttpMethod { get, post, put, delete_ };

// "GET", "POST", "PUT", "DELETE".
[[nodiscard]] QByteArray wireName(HttpMethod method);

struct RunOptions
{
    // Appended to the application's address ("/requests/<id>/status").
    QString path;
    HttpMethod httpMethod = HttpMethod::post;
};

// fal's two services: the queue that runs applications and the REST service that stores files.
enum class Service { queue, rest };

// Scheme, host and port of a service, from ZENTRIK_FAL_QUEUE_URL or ZENTRIK_FAL_REST_URL when
// set (tests, proxies), otherwise fal's public host. Read at every request, so a changed
// variable takes effect at once.
[[nodiscard]] QUrl serviceBaseUrl(Service service);
// The base address with the given path; invalid when the base address is not usable.
[[nodiscard]] QUrl serviceUrl(Service service, const QString &path);

} // namespace zentrik::fal
