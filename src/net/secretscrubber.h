#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include "net/httpresponse.h"

namespace zentrik {

struct HttpRequest;

// The credentials a request carries, and their removal from whatever the other side sends
// back. Providers quote a rejected key in their error ("Incorrect API key provided: sk-…");
// that text reaches the screen, the terminal and the log, so every occurrence is replaced by
// "[KEY]" before anyone sees it.
class SecretScrubber
{
public:
    SecretScrubber() = default;
    explicit SecretScrubber(const HttpRequest &request);

    // Shorter values are left alone: blanking them would cut ordinary words out of replies,
    // and no provider issues keys that short.
    static constexpr qsizetype shortestSecret = 8;
    static constexpr QByteArrayView placeholder { "[KEY]" };

    [[nodiscard]] bool isEmpty() const { return m_secrets.isEmpty(); }
    [[nodiscard]] bool appearsIn(QByteArrayView text) const;
    // Replaces every secret in text; linear in its length for each secret.
    void scrub(QByteArray &text) const;
    void scrub(QString &text) const;
    // A whole answer's body and headers, or a failure's description.
    void scrub(HttpResult &result) const;

private:
    void add(QByteArrayView secret);

    QList<QByteArray> m_secrets;
};

} // namespace zentrik
