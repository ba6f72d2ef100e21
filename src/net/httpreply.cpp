#include "net/httpreply.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QNetworkReply>
#include <QNetworkRequest>

namespace zentrik::httpreply {

namespace {
QString tr(const char *text)
{
    return QCoreApplication::translate("HttpClient", text);
}

int effectivePort(const QUrl &url)
{
    return url.port(url.scheme() == QLatin1String("https") ? 443 : 80);
}

bool sameServer(const QUrl &a, const QUrl &b)
{
    return a.host().compare(b.host(), Qt::CaseInsensitive) == 0 && effectivePort(a) == effectivePort(b);
}

std::optional<QString> proxyFailure(const QNetworkReply *reply, const ProxyInUse &proxy)
{
    if (proxy.address.isEmpty()) {
        return std::nullopt;
    }
    // An HTTP proxy is reached as an ordinary server, so Qt reports its failures as such.
    const auto code = reply->error();
    if (code == QNetworkReply::ConnectionRefusedError) {
        return tr("Proxy refused the connection");
    }
    if (code == QNetworkReply::HostNotFoundError && reply->errorString().contains(proxy.host, Qt::CaseInsensitive)) {
        return tr("Proxy not found");
    }
    if (statusOf(reply) == 407) {
        return proxy.hasCredentials ? tr("Proxy refused the user name or password") : tr("Proxy needs a password");
    }
    switch (code) {
    case QNetworkReply::ProxyConnectionRefusedError:
        return tr("Proxy refused the connection");
    case QNetworkReply::ProxyConnectionClosedError:
        return tr("Proxy closed the connection");
    case QNetworkReply::ProxyNotFoundError:
        return tr("Proxy not found");
    case QNetworkReply::ProxyTimeoutError:
        return tr("Proxy did not answer in time");
    case QNetworkReply::ProxyAuthenticationRequiredError:
        return proxy.hasCredentials ? tr("Proxy refused the user name or password") : tr("Proxy needs a password");
    default:
        return std::nullopt;
    }
}
} // namespace

int statusOf(const QNetworkReply *reply)
{
    return reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
}

bool isRedirectStatus(int status)
{
    return status == 301 || status == 302 || status == 303 || status == 307 || status == 308;
}

bool isSuccess(int status)
{
    return status >= 200 && status < 300;
}

bool isHttpAnswer(const QNetworkReply *reply)
{
    if (!reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).isValid()) {
        return false;
    }
    const int code = reply->error();
    return code == QNetworkReply::NoError || (code >= 201 && code <= 299)
        || code == QNetworkReply::ProtocolInvalidOperationError || (code >= 401 && code <= 499);
}

TransportError transportErrorOf(const QNetworkReply *reply, const ProxyInUse &proxy)
{
    using Kind = TransportError::Kind;
    if (const std::optional<QString> failure = proxyFailure(reply, proxy)) {
        return { Kind::Other, QStringLiteral("%1 (%2)").arg(*failure, proxy.address) };
    }
    switch (reply->error()) {
    case QNetworkReply::HostNotFoundError:
        return { Kind::HostNotFound, reply->errorString() };
    // Our own cancellations never reach here, so a cancelled operation is the transfer
    // timeout at work.
    case QNetworkReply::TimeoutError:
    case QNetworkReply::OperationCanceledError:
        return { Kind::TimedOut, reply->errorString() };
    case QNetworkReply::RemoteHostClosedError:
        return { Kind::ConnectionLost, reply->errorString() };
    // Qt wanted to send the request again after the connection closed, and the body
    // refused to be read twice.
    case QNetworkReply::ContentReSendError:
        return { Kind::ConnectionLost,
            tr("The connection closed before the answer came; the request was not sent again.") };
    case QNetworkReply::TemporaryNetworkFailureError:
    case QNetworkReply::NetworkSessionFailedError:
        return { Kind::NotConnected, reply->errorString() };
    default:
        return { Kind::Other, reply->errorString() };
    }
}

qint64 announcedLength(const QNetworkReply *reply)
{
    const QByteArray value = reply->rawHeader("Content-Length").trimmed();
    bool ok = false;
    const qint64 length = value.toLongLong(&ok);
    return ok && length >= 0 ? length : -1;
}

bool bodyCutShort(const QNetworkReply *reply, const QByteArray &method, int status, qint64 received)
{
    if (method == "HEAD" || status == 204 || status == 304 || (status >= 100 && status < 200)) {
        return false;
    }
    const qint64 length = announcedLength(reply);
    return length >= 0 && received < length;
}

bool bodyLooksWhole(const QNetworkReply *reply, const QByteArray &body)
{
    const QByteArray type = reply->header(QNetworkRequest::ContentTypeHeader).toByteArray().toLower();
    if (body.isEmpty()) {
        return true;
    }
    if (type.contains("json")) {
        QJsonParseError error {};
        QJsonDocument::fromJson(body, &error);
        // A document cut short fails at its end (or inside the literal or number it ended in);
        // one broken further in is whole, just wrong, and its reader says so.
        constexpr int tail = 8;
        return error.error == QJsonParseError::NoError || error.offset < body.trimmed().size() - tail;
    }
    if (type.startsWith("image/png")) {
        static constexpr QByteArrayView end { "\0\0\0\0IEND\xae\x42\x60\x82", 12 };
        return body.endsWith(end);
    }
    if (type.startsWith("image/jpeg")) {
        return body.endsWith("\xff\xd9");
    }
    return true;
}

QList<std::pair<QByteArray, QByteArray>> headersOf(const QNetworkReply *reply)
{
    QList<std::pair<QByteArray, QByteArray>> headers;
    const auto &pairs = reply->rawHeaderPairs();
    headers.reserve(pairs.size());
    for (const auto &pair : pairs) {
        headers.append({ pair.first, pair.second });
    }
    return headers;
}

TransportError connectionLostMidBody()
{
    return { TransportError::Kind::ConnectionLost, tr("The connection closed before the answer was complete.") };
}

TransportError tooLarge(qsizetype limit)
{
    return { TransportError::Kind::Other,
        tr("The answer is larger than %1 MB and was not read.").arg(limit / (qsizetype(1024) * 1024)) };
}

RedirectOutcome redirect(HttpRequest request, const QUrl &from, const QByteArray &location, int status)
{
    const QUrl target = from.resolved(QUrl::fromEncoded(location));
    using Kind = TransportError::Kind;
    if (!target.isValid() || (target.scheme() != QLatin1String("http") && target.scheme() != QLatin1String("https"))) {
        return std::monostate {};
    }
    if (from.scheme() == QLatin1String("https") && target.scheme() == QLatin1String("http")) {
        return TransportError { Kind::Other, tr("Refused a redirect from HTTPS to plain HTTP.") };
    }
    const bool keepsBody = status == 307 || status == 308;
    if (keepsBody && !sameServer(from, target) && (request.method != "GET" && request.method != "HEAD")) {
        // The body is the user's prompt, picture or recording: only the server it was meant
        // for may have it.
        const QString elsewhere
            = target.adjusted(QUrl::RemovePath | QUrl::RemoveQuery | QUrl::RemoveFragment | QUrl::RemoveUserInfo)
                  .toString();
        return TransportError { Kind::Other,
            tr("The server sent the request on to another address (%1); it was not sent there.").arg(elsewhere) };
    }
    if (!sameServer(from, target)) {
        // Keys are meant for the host they were given to, never for whoever it points at.
        for (const char *name : { "Authorization", "x-api-key", "Cookie", "Proxy-Authorization" }) {
            request.removeHeader(name);
        }
    }
    if (status == 303 || ((status == 301 || status == 302) && request.method == "POST")) {
        request.method = QByteArrayLiteral("GET");
        request.body.clear();
        request.removeHeader("Content-Type");
        request.removeHeader("Content-Length");
    }
    request.url = target;
    return request;
}

} // namespace zentrik::httpreply
