#include "net/secretscrubber.h"

#include "net/httprequest.h"

namespace zentrik {

namespace {

// Headers whose value is, or ends with, a credential.
bool carriesCredential(QByteArrayView name)
{
    for (const char *known : { "Authorization", "Proxy-Authorization", "x-api-key", "api-key" }) {
        if (name.compare(QByteArrayView(known), Qt::CaseInsensitive) == 0) {
            return true;
        }
    }
    return false;
}

} // namespace

SecretScrubber::SecretScrubber(const HttpRequest &request)
{
    for (const auto &[name, value] : request.headers) {
        if (!carriesCredential(name)) {
            continue;
        }
        QByteArrayView credential = QByteArrayView(value).trimmed();
        // "Bearer sk-…", "Key id:secret": the scheme word is no secret.
        if (const qsizetype space = credential.indexOf(' '); space >= 0) {
            credential = credential.sliced(space + 1).trimmed();
        }
        add(credential);
        // A key made of an id and a secret may be quoted in parts.
        if (const qsizetype colon = credential.indexOf(':'); colon >= 0) {
            add(credential.first(colon));
            add(credential.sliced(colon + 1));
        }
    }
    // The longest first, so that a part never leaves the rest of a whole key behind.
    std::sort(m_secrets.begin(), m_secrets.end(),
        [](const QByteArray &a, const QByteArray &b) { return a.size() > b.size(); });
}

void SecretScrubber::add(QByteArrayView secret)
{
    if (secret.size() >= shortestSecret && !m_secrets.contains(secret)) {
        m_secrets.append(secret.toByteArray());
    }
}

bool SecretScrubber::appearsIn(QByteArrayView text) const
{
    return std::any_of(
        m_secrets.begin(), m_secrets.end(), [text](const QByteArray &secret) { return text.contains(secret); });
}

void SecretScrubber::scrub(QByteArray &text) const
{
    for (const QByteArray &secret : m_secrets) {
        if (text.contains(secret)) {
            text.replace(secret, placeholder);
        }
    }
}

void SecretScrubber::scrub(QString &text) const
{
    for (const QByteArray &secret : m_secrets) {
        const QString wide = QString::fromUtf8(secret);
        if (text.contains(wide)) {
            text.replace(wide, QString::fromLatin1(placeholder));
        }
    }
}

void SecretScrubber::scrub(HttpResult &result) const
{
    if (auto *response = std::get_if<HttpResponse>(&result)) {
        scrub(response->body);
        for (auto &header : response->headers) {
            scrub(header.second);
        }
    } else {
        scrub(std::get<TransportError>(result).description);
    }
}

} // namespace zentrik
