#include "fal/falconfig.h"

namespace zentrik::fal {

ClientCredentials ClientCredentials::keyPair(QString pair)
{
    return ClientCredentials(KeyPair { std::move(pair) });
}

ClientCredentials ClientCredentials::key(QString id, QString secret)
{
    return ClientCredentials(Key { std::move(id), std::move(secret) });
}

ClientCredentials ClientCredentials::custom(std::function<QString()> provide)
{
    return ClientCredentials(Custom { std::move(provide) });
}

ClientCredentials ClientCredentials::fromEnv()
{
    return ClientCredentials(FromEnv {});
}

QString ClientCredentials::credential() const
{
    if (const auto *pair = std::get_if<KeyPair>(&m_source)) {
        return pair->pair;
    }
    if (const auto *key = std::get_if<Key>(&m_source)) {
        return key->id + QLatin1Char(':') + key->secret;
    }
    if (const auto *custom = std::get_if<Custom>(&m_source)) {
        return custom->provide ? custom->provide() : QString();
    }
    QString key = qEnvironmentVariable("FAL_KEY");
    if (!key.isEmpty()) {
        return key;
    }
    const QString id = qEnvironmentVariable("FAL_KEY_ID");
    const QString secret = qEnvironmentVariable("FAL_KEY_SECRET");
    if (id.isEmpty() || secret.isEmpty()) {
        return {};
    }
    return id + QLatin1Char(':') + secret;
}

QByteArray wireName(HttpMethod method)
{
    switch (method) {
    case HttpMethod::get:
        return QByteArrayLiteral("GET");
    case HttpMethod::post:
        return QByteArrayLiteral("POST");
    case HttpMethod::put:
        return QByteArrayLiteral("PUT");
    case HttpMethod::delete_:
        return QByteArrayLiteral("DELETE");
    }
    return {};
}

QUrl serviceBaseUrl(Service service)
{
    const bool queue = service == Service::queue;
    const QString configured = qEnvironmentVariable(queue ? "ZENTRIK_FAL_QUEUE_URL" : "ZENTRIK_FAL_REST_URL");
    if (!configured.isEmpty()) {
        return QUrl(configured, QUrl::StrictMode);
    }
    return QUrl(QString::fromLatin1(queue ? "https://queue.fal.run" : "https://rest.alpha.fal.ai"), QUrl::StrictMode);
}

QUrl serviceUrl(Service service, const QString &path)
{
    QUrl url = serviceBaseUrl(service);
    if (!url.isValid() || url.scheme().isEmpty() || url.host().isEmpty()) {
        return {};
    }
    url.setPath(path);
    return url;
}

} // namespace zentrik::fal
