#include "model/falconfig.h"

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

} // namespace zentrik::fal
