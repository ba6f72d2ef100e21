#pragma once

#include <QByteArray>
#include <QList>
#include <QUrl>

#include <utility>
#include <variant>

#include "net/httprequest.h"
#include "net/transporterror.h"

class QNetworkReply;

namespace zentrik::httpreply {

// What HttpClient reads off a QNetworkReply, and the rules it applies to what it reads: which
// failures are answers, which body is whole, where a redirect may lead.

[[nodiscard]] int statusOf(const QNetworkReply *reply);
[[nodiscard]] bool isRedirectStatus(int status);
[[nodiscard]] bool isSuccess(int status);
// Qt reports HTTP error statuses as reply errors too; those are answers, not transport
// failures, and go to the caller with their status and body.
[[nodiscard]] bool isHttpAnswer(const QNetworkReply *reply);
// The proxy a request went through, for telling its failures apart from the server's.
struct ProxyInUse
{
    QString address; // "host:port"; empty when the request went straight out
    QString host;
    bool hasCredentials = false;
};
// The failure below HTTP. A proxy that failed is named as such, with its address, so the
// user knows where to look: one that refused the connection, could not be found, or wants
// (other) credentials.
[[nodiscard]] TransportError transportErrorOf(const QNetworkReply *reply, const ProxyInUse &proxy);

// The announced body length, or -1 when the answer announced none.
[[nodiscard]] qint64 announcedLength(const QNetworkReply *reply);
// Whether the body stopped before the length its headers announced. Qt sometimes finishes
// such a reply without an error when the connection closes right after the last byte.
[[nodiscard]] bool bodyCutShort(const QNetworkReply *reply, const QByteArray &method, int status, qint64 received);
// For a body without an announced length, whether it ends where its format ends. Qt
// finishes a chunked answer without an error when the connection closes before the last
// chunk, so a cut JSON document or picture would otherwise pass for a whole one. Formats
// this does not know are taken as they are.
[[nodiscard]] bool bodyLooksWhole(const QNetworkReply *reply, const QByteArray &body);
[[nodiscard]] QList<std::pair<QByteArray, QByteArray>> headersOf(const QNetworkReply *reply);

[[nodiscard]] TransportError connectionLostMidBody();
[[nodiscard]] TransportError tooLarge(qsizetype limit);

// Where a redirect leads: std::monostate when it is no redirect to follow (the answer goes
// to the caller as it is), the request to send next, or why it was refused. Credentials
// never travel to another server, and a body only to the server it was meant for.
using RedirectOutcome = std::variant<std::monostate, HttpRequest, TransportError>;
[[nodiscard]] RedirectOutcome redirect(HttpRequest request, const QUrl &from, const QByteArray &location, int status);

} // namespace zentrik::httpreply
