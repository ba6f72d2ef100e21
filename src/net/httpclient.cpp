#include "net/httpclient.h"

#include <QNetworkAccessManager>
#include <QNetworkProxyFactory>
#include <QNetworkReply>
#include <QNetworkRequest>
#if QT_CONFIG(ssl)
#include <QSslConfiguration>
#endif

namespace zentrik {

struct HttpClient::Call
{
    CallId id = 0;
    HttpRequest request;
    bool streaming = false;
    bool hasContext = false;
    QPointer<QObject> context;
    QMetaObject::Connection contextWatch;
    StreamHandlers handlers;
    QNetworkReply *reply = nullptr;
    LineSplitter lines;
    QByteArray errorBody;
    int redirects = 0;
    bool resent = false;
};

namespace {

int statusOf(const QNetworkReply *reply)
{
    return reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
}

bool isRedirectStatus(int status)
{
    return status == 301 || status == 302 || status == 303 || status == 307 || status == 308;
}

// Qt reports HTTP error statuses as reply errors too; those are answers, not transport
// failures, and go to the caller with their status and body.
bool isHttpAnswer(const QNetworkReply *reply)
{
    if (!reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).isValid()) {
        return false;
    }
    const int code = reply->error();
    return code == QNetworkReply::NoError || (code >= 201 && code <= 299)
        || code == QNetworkReply::ProtocolInvalidOperationError || (code >= 401 && code <= 499);
}

TransportError transportErrorOf(const QNetworkReply *reply)
{
    using Kind = TransportError::Kind;
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
    case QNetworkReply::TemporaryNetworkFailureError:
    case QNetworkReply::NetworkSessionFailedError:
        return { Kind::NotConnected, reply->errorString() };
    default:
        return { Kind::Other, reply->errorString() };
    }
}

int effectivePort(const QUrl &url)
{
    return url.port(url.scheme() == QLatin1String("https") ? 443 : 80);
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

} // namespace

HttpClient::HttpClient(QObject *parent)
    : QObject(parent)
    , m_manager(new QNetworkAccessManager(this))
{
    // Honours the desktop's proxy settings and the http_proxy / https_proxy / no_proxy
    // variables, as users behind a proxy expect.
    QNetworkProxyFactory::setUseSystemConfiguration(true);
}

HttpClient::~HttpClient()
{
    const auto calls = std::exchange(m_calls, {});
    for (const auto &[id, call] : calls) {
        if (call->reply != nullptr) {
            call->reply->disconnect(this);
            call->reply->abort();
            delete call->reply;
        }
        QObject::disconnect(call->contextWatch);
    }
}

void HttpClient::setTimeout(std::chrono::milliseconds timeout)
{
    m_timeout = timeout;
}

HttpClient::CallId HttpClient::send(HttpRequest request, QObject *context, ResultHandler onFinished)
{
    return begin(std::move(request), context, StreamHandlers { {}, std::move(onFinished) }, false);
}

HttpClient::CallId HttpClient::stream(HttpRequest request, QObject *context, StreamHandlers handlers)
{
    return begin(std::move(request), context, std::move(handlers), true);
}

HttpClient::CallId HttpClient::begin(HttpRequest request, QObject *context, StreamHandlers handlers, bool streaming)
{
    auto call = std::make_shared<Call>();
    call->id = m_nextId++;
    call->request = std::move(request);
    call->streaming = streaming;
    call->handlers = std::move(handlers);
    if (context != nullptr) {
        call->hasContext = true;
        call->context = context;
        call->contextWatch = connect(context, &QObject::destroyed, this, [this, id = call->id] { cancel(id); });
    }
    m_calls.emplace(call->id, call);
    start(call);
    return call->id;
}

void HttpClient::start(const CallPtr &call)
{
    const HttpRequest &request = call->request;
    QNetworkRequest networkRequest(request.url);
    for (const auto &[name, value] : request.headers) {
        networkRequest.setRawHeader(name, value);
    }
    // Redirects are followed by hand (followRedirect) so that credentials can be dropped.
    networkRequest.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    const auto timeout = request.timeout.count() > 0 ? request.timeout : m_timeout;
    networkRequest.setTransferTimeout(int(timeout.count()));
#if QT_CONFIG(ssl)
    if (request.url.scheme() == QLatin1String("https")) {
        QSslConfiguration ssl = QSslConfiguration::defaultConfiguration();
        ssl.setPeerVerifyMode(QSslSocket::VerifyPeer);
        networkRequest.setSslConfiguration(ssl);
    }
#endif

    QNetworkReply *reply = m_manager->sendCustomRequest(networkRequest, request.method, request.body);
    call->reply = reply;
    const CallId id = call->id;
    if (call->streaming) {
        connect(reply, &QNetworkReply::readyRead, this, [this, id] { onReadyRead(id); });
    }
    connect(reply, &QNetworkReply::finished, this, [this, id] { onFinished(id); });
}

void HttpClient::restart(const CallPtr &call)
{
    if (QNetworkReply *reply = std::exchange(call->reply, nullptr)) {
        reply->disconnect(this);
        reply->deleteLater();
    }
    call->lines = LineSplitter(call->lines.maxLineLength());
    call->errorBody.clear();
    start(call);
}

HttpClient::CallPtr HttpClient::find(CallId id) const
{
    const auto it = m_calls.find(id);
    return it == m_calls.end() ? nullptr : it->second;
}

bool HttpClient::isActive(CallId id) const
{
    return m_calls.contains(id);
}

void HttpClient::cancel(CallId id)
{
    if (const CallPtr call = find(id)) {
        drop(call);
    }
}

void HttpClient::drop(const CallPtr &call)
{
    m_calls.erase(call->id);
    QObject::disconnect(call->contextWatch);
    if (call->reply != nullptr) {
        QNetworkReply *reply = std::exchange(call->reply, nullptr);
        reply->disconnect(this);
        reply->abort();
        reply->deleteLater();
    }
}

void HttpClient::complete(const CallPtr &call, const HttpResult &result)
{
    m_calls.erase(call->id);
    QObject::disconnect(call->contextWatch);
    if (call->reply != nullptr) {
        QNetworkReply *reply = std::exchange(call->reply, nullptr);
        reply->disconnect(this);
        if (reply->isRunning()) {
            reply->abort();
        }
        reply->deleteLater();
    }
    if (call->hasContext && call->context.isNull()) {
        return;
    }
    if (call->handlers.onFinished) {
        call->handlers.onFinished(result);
    }
}

bool HttpClient::deliverLines(const CallPtr &call, QByteArrayView bytes)
{
    const auto sink = [this, &call](QByteArrayView line) {
        if (call->hasContext && call->context.isNull()) {
            return false;
        }
        const bool goOn = call->handlers.onLine(line);
        return goOn && isActive(call->id);
    };
    switch (call->lines.feed(bytes, sink)) {
    case LineSplitter::Status::Ok:
        return true;
    case LineSplitter::Status::Stopped:
        drop(call);
        return false;
    case LineSplitter::Status::LineTooLong:
        complete(call,
            TransportError { TransportError::Kind::Other,
                tr("A line of the reply is longer than %1 MiB.")
                    .arg(call->lines.maxLineLength() / (qsizetype(1024) * 1024)) });
        return false;
    }
    return false;
}

void HttpClient::onReadyRead(CallId id)
{
    const CallPtr call = find(id);
    if (!call) {
        return;
    }
    QNetworkReply *reply = call->reply;
    const int status = statusOf(reply);
    const QByteArray bytes = reply->readAll();
    if (isRedirectStatus(status) || !call->handlers.onLine) {
        return;
    }
    if (status >= 200 && status < 300) {
        deliverLines(call, bytes);
    } else if (call->errorBody.size() < maxErrorBodySize) {
        call->errorBody.append(bytes.left(maxErrorBodySize - call->errorBody.size()));
    }
}

void HttpClient::onFinished(CallId id)
{
    const CallPtr call = find(id);
    if (!call) {
        return;
    }
    QNetworkReply *reply = call->reply;
    const int status = statusOf(reply);
    const bool answered = isHttpAnswer(reply);

    if (answered && isRedirectStatus(status) && reply->hasRawHeader("Location")) {
        if (followRedirect(call, status)) {
            return;
        }
    }

    const bool streamedLines = call->streaming && call->handlers.onLine && status >= 200 && status < 300;
    if (streamedLines) {
        // Complete lines that arrived together with the end still count, even when the
        // connection broke right after them.
        if (!deliverLines(call, reply->readAll())) {
            return;
        }
    }
    if (!answered && reply->error() == QNetworkReply::RemoteHostClosedError && status == 0 && !call->resent) {
        // The connection closed before any answer came: a kept-alive connection the server
        // had just given up on, or one that failed while this request waited its turn.
        // Nothing reached the caller yet, so sending once more cannot show anything twice.
        call->resent = true;
        restart(call);
        return;
    }
    if (!answered) {
        complete(call, transportErrorOf(reply));
        return;
    }

    HttpResponse response;
    response.status = status;
    response.headers = headersOf(reply);
    if (streamedLines) {
        const auto sink = [this, &call](QByteArrayView line) {
            return !(call->hasContext && call->context.isNull()) && call->handlers.onLine(line) && isActive(call->id);
        };
        if (call->lines.finish(sink) != LineSplitter::Status::Ok) {
            if (isActive(id)) {
                drop(call);
            }
            return;
        }
    } else if (call->streaming) {
        response.body = call->errorBody + reply->readAll().left(maxErrorBodySize - call->errorBody.size());
    } else {
        response.body = reply->readAll();
    }
    complete(call, response);
}

bool HttpClient::followRedirect(const CallPtr &call, int status)
{
    QNetworkReply *reply = call->reply;
    const QUrl from = reply->url();
    const QUrl target = from.resolved(QUrl::fromEncoded(reply->rawHeader("Location")));
    using Kind = TransportError::Kind;
    if (!target.isValid() || (target.scheme() != QLatin1String("http") && target.scheme() != QLatin1String("https"))) {
        return false;
    }
    if (++call->redirects > maxRedirects) {
        complete(call, TransportError { Kind::Other, tr("Too many redirects.") });
        return true;
    }
    if (from.scheme() == QLatin1String("https") && target.scheme() == QLatin1String("http")) {
        complete(call, TransportError { Kind::Other, tr("Refused a redirect from HTTPS to plain HTTP.") });
        return true;
    }

    HttpRequest &request = call->request;
    if (from.host().compare(target.host(), Qt::CaseInsensitive) != 0 || effectivePort(from) != effectivePort(target)) {
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

    restart(call);
    return true;
}

} // namespace zentrik
