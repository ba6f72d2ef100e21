#pragma once

#include <QByteArray>
#include <QList>
#include <QUrl>

#include <chrono>
#include <utility>

namespace zentrik {

struct HttpRequest
{
    QByteArray method = QByteArrayLiteral("GET");
    QUrl url;
    // Sent in this order; names are compared without regard to case.
    QList<std::pair<QByteArray, QByteArray>> headers;
    QByteArray body;
    // Longest silence allowed on the connection; zero means the client's default.
    std::chrono::milliseconds timeout { 0 };
    // Longest time a whole-reply request may take from start to end, however steadily the
    // answer trickles in; zero means the client's default. Streamed requests have none.
    std::chrono::milliseconds deadline { 0 };

    // Replaces an existing header of that name, or appends it.
    void setHeader(const QByteArray &name, const QByteArray &value);
    [[nodiscard]] QByteArray header(QByteArrayView name) const;
    void removeHeader(QByteArrayView name);
    // False when a header name or value holds a line break or another control character,
    // which would end the header early and let the rest pass for headers of its own.
    [[nodiscard]] bool headersAreSafe() const;
};

} // namespace zentrik
