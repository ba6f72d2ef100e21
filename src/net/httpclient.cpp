#include "net/httpclient.h"

#include "net/connectionpolicy.h"
#include "net/httpreply.h"
#include "net/oneshotbody.h"
#include "net/secretscrubber.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QTimer>

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
    SecretScrubber scrubber;
    std::unique_ptr<QTimer> deadline;
    LineSplitter lines;
    QByteArray errorBody;
    QByteArray body;
    // Body bytes the current reply has brought, as they came over the wire.
    qint64 received = 0;
    int redirects = 0;
};

using namespace httpreply;

HttpClient::HttpClient(QObject *parent)
    : QObject(parent)
    , m_manager(new QNetworkAccessManager(this))
    , m_connections(std::make_unique<ConnectionPolicy>(m_manager))
{ }

void HttpClient::setNetworkSettings(const NetworkSettings &settings)
{
    m_connections->apply(settings);
}

const NetworkSettings &HttpClient::networkSettings() const
{
    return m_connections->settings();
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

void HttpClient::setDeadline(std::chrono::milliseconds deadline)
{
    m_deadline = deadline;
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
    call->scrubber = SecretScrubber(call->request);
    call->streaming = streaming;
    call->handlers = std::move(handlers);
    if (context != nullptr) {
        call->hasContext = true;
        call->context = context;
        call->contextWatch = connect(context, &QObject::destroyed, this, [this, id = call->id] { cancel(id); });
    }
    m_calls.emplace(call->id, call);
    if (!call->request.headersAreSafe()) {
        failLater(call,
            { TransportError::Kind::Other,
                tr("The request was not sent: a header such as the API key holds a line break or another control "
                   "character.") });
        return call->id;
    }
    if (!streaming) {
        const auto limit = call->request.deadline.count() > 0 ? call->request.deadline : m_deadline;
        call->deadline = std::make_unique<QTimer>();
        call->deadline->setSingleShot(true);
        connect(call->deadline.get(), &QTimer::timeout, this, [this, id = call->id, limit] {
            if (const CallPtr late = find(id)) {
                complete(late,
                    TransportError { TransportError::Kind::TimedOut,
                        tr("The answer took longer than %1 seconds.")
                            .arg(std::chrono::duration_cast<std::chrono::seconds>(limit).count()) });
            }
        });
        call->deadline->start(limit);
    }
    start(call);
    return call->id;
}

void HttpClient::failLater(const CallPtr &call, const TransportError &error)
{
    // Handlers never run inside send() or stream(): callers set up their state after the call.
    QMetaObject::invokeMethod(
        this,
        [this, id = call->id, error] {
            if (const CallPtr failed = find(id)) {
                complete(failed, error);
            }
        },
        Qt::QueuedConnection);
}

void HttpClient::start(const CallPtr &call)
{
    const HttpRequest &request = call->request;
    QNetworkRequest networkRequest(request.url);
    for (const auto &[name, value] : request.headers) {
        networkRequest.setRawHeader(name, value);
    }
    // Bodies as sent, so that a body cut short shows against its announced length (and a
    // compressed one cannot swell past the size limit unseen).
    if (request.header("Accept-Encoding").isEmpty()) {
        networkRequest.setRawHeader("Accept-Encoding", "identity");
    }
    // Qt must read the body from our device, not from a copy it could rewind.
    networkRequest.setAttribute(QNetworkRequest::DoNotBufferUploadDataAttribute, true);
    // Redirects are followed by hand (followRedirect) so that credentials can be dropped.
    networkRequest.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    const auto timeout = request.timeout.count() > 0 ? request.timeout : m_timeout;
    networkRequest.setTransferTimeout(int(timeout.count()));
    m_connections->prepare(networkRequest);

    auto *body = new OneShotBody(request.body);
    QNetworkReply *reply = m_manager->sendCustomRequest(networkRequest, request.method, body);
    body->setParent(reply);
    // Qt reads ahead only this far before waiting for us, so what it holds stays small
    // whatever the reply's size.
    reply->setReadBufferSize(readAhead);
    call->reply = reply;
    call->received = 0;
    const CallId id = call->id;
    connect(reply, &QNetworkReply::readyRead, this, [this, id] { onReadyRead(id); });
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
    call->body.clear();
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
    call->deadline.reset();
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
    call->deadline.reset();
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
    if (!call->handlers.onFinished) {
        return;
    }
    if (call->scrubber.isEmpty()) {
        call->handlers.onFinished(result);
        return;
    }
    HttpResult scrubbed = result;
    call->scrubber.scrub(scrubbed);
    call->handlers.onFinished(scrubbed);
}

bool HttpClient::deliverLines(const CallPtr &call, QByteArrayView bytes)
{
    const auto sink = [this, &call](QByteArrayView line) {
        if (call->hasContext && call->context.isNull()) {
            return false;
        }
        bool goOn = false;
        if (call->scrubber.appearsIn(line)) {
            QByteArray scrubbed = line.toByteArray();
            call->scrubber.scrub(scrubbed);
            goOn = call->handlers.onLine(scrubbed);
        } else {
            goOn = call->handlers.onLine(line);
        }
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
    if (const CallPtr call = find(id); call && call->reply->isOpen()) {
        take(call, call->reply->readAll());
    }
}

bool HttpClient::take(const CallPtr &call, const QByteArray &bytes)
{
    const QNetworkReply *reply = call->reply;
    const int status = statusOf(reply);
    call->received += bytes.size();
    if (isRedirectStatus(status)) {
        return true;
    }
    if (call->received > maxReplySize || announcedLength(reply) > maxReplySize) {
        complete(call, tooLarge(maxReplySize));
        return false;
    }
    if (bytes.isEmpty()) {
        return true;
    }
    if (call->streaming && call->handlers.onLine && isSuccess(status)) {
        return deliverLines(call, bytes);
    }
    if (call->streaming) {
        if (call->errorBody.size() < maxErrorBodySize) {
            call->errorBody.append(bytes.left(maxErrorBodySize - call->errorBody.size()));
        }
        return true;
    }
    if (const qsizetype needed = call->body.size() + bytes.size(); needed > call->body.capacity()) {
        // An announced length is reserved at once; otherwise the buffer doubles, but never
        // past the limit, so a reply near it does not hold twice its size.
        const qint64 announced = announcedLength(reply);
        call->body.reserve(announced >= needed
                ? qsizetype(announced)
                : std::min(maxReplySize, std::max<qsizetype>(2 * needed, qsizetype(64) * 1024)));
    }
    call->body.append(bytes);
    return true;
}

void HttpClient::onFinished(CallId id)
{
    const CallPtr call = find(id);
    if (!call) {
        return;
    }
    QNetworkReply *reply = call->reply;
    const int status = statusOf(reply);
    // A proxy that turned the credentials down answers for itself, not for the server.
    const bool answered = isHttpAnswer(reply) && status != 407;

    if (answered && isRedirectStatus(status) && reply->hasRawHeader("Location")) {
        if (followRedirect(call, status)) {
            return;
        }
    }

    // Complete lines that arrived together with the end still count, even when the
    // connection broke right after them.
    if (reply->isOpen() && !take(call, reply->readAll())) {
        return;
    }
    if (!answered) {
        complete(call, m_connections->failureOf(reply));
        return;
    }
    if (bodyCutShort(reply, call->request.method, status, call->received)
        || (!call->streaming && announcedLength(reply) < 0 && !bodyLooksWhole(reply, call->body))) {
        complete(call, connectionLostMidBody());
        return;
    }

    HttpResponse response;
    response.status = status;
    response.headers = headersOf(reply);
    if (call->streaming && call->handlers.onLine && isSuccess(status)) {
        const auto sink = [this, &call](QByteArrayView line) {
            if (call->hasContext && call->context.isNull()) {
                return false;
            }
            QByteArray scrubbed = line.toByteArray();
            call->scrubber.scrub(scrubbed);
            return call->handlers.onLine(scrubbed) && isActive(call->id);
        };
        if (call->lines.finish(sink) != LineSplitter::Status::Ok) {
            if (isActive(id)) {
                drop(call);
            }
            return;
        }
    } else if (call->streaming) {
        response.body = std::exchange(call->errorBody, {});
    } else {
        response.body = std::exchange(call->body, {});
    }
    complete(call, response);
}

bool HttpClient::followRedirect(const CallPtr &call, int status)
{
    QNetworkReply *reply = call->reply;
    RedirectOutcome outcome = redirect(call->request, reply->url(), reply->rawHeader("Location"), status);
    if (std::holds_alternative<std::monostate>(outcome)) {
        return false;
    }
    if (++call->redirects > maxRedirects) {
        complete(call, TransportError { TransportError::Kind::Other, tr("Too many redirects.") });
        return true;
    }
    if (const auto *refused = std::get_if<TransportError>(&outcome)) {
        complete(call, *refused);
        return true;
    }
    call->request = std::get<HttpRequest>(std::move(outcome));
    restart(call);
    return true;
}

} // namespace zentrik
