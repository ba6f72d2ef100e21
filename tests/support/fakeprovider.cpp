#include "support/fakeprovider.h"

#include <httplib.h>

#include <QHash>

#include <condition_variable>
#include <mutex>
#include <thread>

namespace zentrik::test {

using namespace std::chrono_literals;

ScriptedReply ScriptedReply::json(const QByteArray &body, int status)
{
    ScriptedReply reply;
    reply.status = status;
    reply.pieces = { { body, 0ms } };
    return reply;
}

ScriptedReply ScriptedReply::json(const QJsonDocument &body, int status)
{
    return json(body.toJson(QJsonDocument::Compact), status);
}

ScriptedReply ScriptedReply::sse(const QList<QByteArray> &pieces, std::chrono::milliseconds pause)
{
    ScriptedReply reply;
    reply.contentType = QByteArrayLiteral("text/event-stream");
    reply.chunked = true;
    for (qsizetype i = 0; i < pieces.size(); ++i) {
        reply.pieces.append({ pieces.at(i), i == 0 ? 0ms : pause });
    }
    return reply;
}

ScriptedReply ScriptedReply::truncated(const QByteArray &body, qsizetype sent)
{
    ScriptedReply reply = json(body);
    reply.pieces = { { body.left(sent), 0ms } };
    reply.headers.append({ QByteArrayLiteral("X-Fake-Announced-Length"), QByteArray::number(body.size()) });
    reply.ending = Ending::CloseEarly;
    return reply;
}

ScriptedReply ScriptedReply::noAnswer()
{
    ScriptedReply reply;
    reply.ending = Ending::NoAnswer;
    return reply;
}

ScriptedReply ScriptedReply::redirect(const QByteArray &location, int status)
{
    ScriptedReply reply;
    reply.status = status;
    reply.headers.append({ QByteArrayLiteral("Location"), location });
    return reply;
}

namespace {
bool sameName(QByteArrayView a, QByteArrayView b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}
} // namespace

bool RecordedRequest::hasHeader(QByteArrayView name) const
{
    return std::any_of(headers.begin(), headers.end(), [name](const auto &h) { return sameName(h.first, name); });
}

QByteArray RecordedRequest::header(QByteArrayView name) const
{
    for (const auto &h : headers) {
        if (sameName(h.first, name)) {
            return h.second;
        }
    }
    return {};
}

QJsonDocument RecordedRequest::json() const
{
    return QJsonDocument::fromJson(body);
}

struct FakeProvider::State
{
    std::unique_ptr<httplib::Server> server;
    std::thread thread;
    int port = 0;
    QByteArray host;
    bool tls = false;

    mutable std::mutex mutex;
    std::condition_variable stopping;
    bool stopped = false;
    QList<RecordedRequest> requests;
    QHash<QByteArray, QList<ScriptedReply>> queued;
    QHash<QByteArray, ScriptedReply> standing;
    QHash<QByteArray, Handler> handlers;

    static QByteArray routeKey(const QByteArray &method, const QByteArray &path)
    {
        return method.toUpper() + ' ' + path;
    }

    // Waits for the pause, or less when the server is shutting down; false then.
    bool pause(std::chrono::milliseconds duration)
    {
        std::unique_lock lock(mutex);
        return !stopping.wait_for(lock, duration, [this] { return stopped; });
    }

    void waitForShutdown()
    {
        std::unique_lock lock(mutex);
        stopping.wait(lock, [this] { return stopped; });
    }

    void markSent(qsizetype index)
    {
        std::lock_guard lock(mutex);
        requests[index].piecesSentAt.append(Clock::now());
    }

    ScriptedReply replyFor(const RecordedRequest &request)
    {
        const QByteArray key = routeKey(request.method, request.path);
        Handler handler;
        {
            std::lock_guard lock(mutex);
            auto queue = queued.find(key);
            if (queue != queued.end() && !queue->isEmpty()) {
                return queue->takeFirst();
            }
            if (auto it = standing.constFind(key); it != standing.constEnd()) {
                return *it;
            }
            handler = handlers.value(key);
        }
        if (handler) {
            return handler(request);
        }
        return ScriptedReply::json(
            QByteArrayLiteral(R"({"error":{"message":"No route scripted for )") + key + QByteArrayLiteral(R"("}})"),
            404);
    }

    void serve(const httplib::Request &in, httplib::Response &out)
    {
        RecordedRequest request;
        request.arrivedAt = Clock::now();
        request.method = QByteArray::fromStdString(in.method);
        request.path = QByteArray::fromStdString(in.path);
        request.target = QByteArray::fromStdString(in.target);
        for (const char *scheme : { "http://", "https://" }) {
            if (request.path.startsWith(scheme)) {
                const qsizetype length = qsizetype(qstrlen(scheme));
                const qsizetype pathStart = request.path.indexOf('/', length);
                request.proxiedHost = request.path.mid(length, pathStart < 0 ? -1 : pathStart - length);
                request.path = pathStart < 0 ? QByteArrayLiteral("/") : request.path.mid(pathStart);
            }
        }
        for (const auto &[name, value] : in.headers) {
            // cpp-httplib adds these itself for its own bookkeeping.
            if (name == "REMOTE_ADDR" || name == "REMOTE_PORT" || name == "LOCAL_ADDR" || name == "LOCAL_PORT") {
                continue;
            }
            request.headers.append({ QByteArray::fromStdString(name), QByteArray::fromStdString(value) });
        }
        request.body = QByteArray::fromStdString(in.body);
        for (const auto &[name, part] : in.files) {
            request.formFields.append({ QByteArray::fromStdString(name), QByteArray::fromStdString(part.content) });
        }
        qsizetype index = 0;
        {
            std::lock_guard lock(mutex);
            index = requests.size();
            requests.append(request);
        }

        ScriptedReply reply = replyFor(request);
        if (reply.ending == ScriptedReply::Ending::NoAnswer) {
            waitForShutdown();
            out.status = 503;
            return;
        }

        out.status = reply.status;
        qsizetype announced = -1;
        for (const auto &[name, value] : reply.headers) {
            if (name == "X-Fake-Announced-Length") {
                announced = value.toLongLong();
                continue;
            }
            out.set_header(name.toStdString(), value.toStdString());
        }
        QList<ScriptedReply::Piece> pieces = reply.pieces;
        const bool closeEarly = reply.ending == ScriptedReply::Ending::CloseEarly;
        const auto writePieces = [this, pieces, index, closeEarly](httplib::DataSink &sink) {
            for (const auto &piece : pieces) {
                if (piece.pauseBefore.count() > 0 && !pause(piece.pauseBefore)) {
                    return false;
                }
                if ((sink.is_writable && !sink.is_writable())
                    || !sink.write(piece.bytes.constData(), size_t(piece.bytes.size()))) {
                    return false;
                }
                markSent(index);
            }
            if (closeEarly) {
                return false;
            }
            if (sink.done) {
                sink.done();
            }
            return true;
        };

        if (reply.chunked) {
            out.set_chunked_content_provider(reply.contentType.toStdString(),
                [writePieces](size_t, httplib::DataSink &sink) { return writePieces(sink); });
            return;
        }
        qsizetype length = 0;
        for (const auto &piece : pieces) {
            length += piece.bytes.size();
        }
        if (announced >= 0) {
            length = announced;
        }
        if (length == 0 && !closeEarly) {
            markSent(index);
            return;
        }
        out.set_content_provider(size_t(length), reply.contentType.toStdString(),
            [writePieces](size_t offset, size_t, httplib::DataSink &sink) {
                // The provider is asked again while bytes are missing;
                // everything was written the first time.
                return offset == 0 && writePieces(sink);
            });
    }
};

FakeProvider::FakeProvider()
    : FakeProvider(Options {})
{ }

FakeProvider::FakeProvider(const Options &options)
    : m_state(std::make_shared<State>())
{
    State &state = *m_state;
    state.host = options.host;
    state.tls = !options.certificateFile.isEmpty();
    if (state.tls) {
        state.server = std::make_unique<httplib::SSLServer>(
            options.certificateFile.toLocal8Bit().constData(), options.keyFile.toLocal8Bit().constData());
    } else {
        state.server = std::make_unique<httplib::Server>();
    }
    httplib::Server &server = *state.server;
    // One answer per connection: the server never sits on an idle keep-alive connection, so
    // shutting it down never waits for a client to go away.
    server.set_keep_alive_max_count(1);
    server.set_tcp_nodelay(true);
    server.set_read_timeout(5s);
    // Every method and path goes to the script; the routes are looked up there.
    const auto serve = [&state](const httplib::Request &in, httplib::Response &out) { state.serve(in, out); };
    server.Get(".*", serve);
    server.Post(".*", serve);
    server.Put(".*", serve);
    server.Patch(".*", serve);
    server.Delete(".*", serve);
    server.Options(".*", serve);
    if (options.port == 0) {
        state.port = server.bind_to_any_port(options.host.toStdString());
    } else {
        state.port = server.bind_to_port(options.host.toStdString(), options.port) ? options.port : -1;
    }
    if (state.port <= 0) {
        return;
    }
    state.thread = std::thread([&server] { server.listen_after_bind(); });
    // stop() only works on a running server, so the destructor must not race the start.
    for (int i = 0; i < 5000 && !server.is_running(); ++i) {
        std::this_thread::sleep_for(1ms);
    }
}

bool FakeProvider::isListening() const
{
    return m_state->port > 0 && m_state->server->is_running();
}

FakeProvider::~FakeProvider()
{
    {
        std::lock_guard lock(m_state->mutex);
        m_state->stopped = true;
    }
    m_state->stopping.notify_all();
    m_state->server->stop();
    if (m_state->thread.joinable()) {
        m_state->thread.join();
    }
}

QUrl FakeProvider::baseUrl() const
{
    const QString host = m_state->host.contains(':') ? QStringLiteral("[%1]").arg(QString::fromLatin1(m_state->host))
                                                     : QString::fromLatin1(m_state->host);
    return QUrl(QStringLiteral("%1://%2:%3")
                    .arg(m_state->tls ? QStringLiteral("https") : QStringLiteral("http"), host)
                    .arg(m_state->port));
}

int FakeProvider::port() const
{
    return m_state->port;
}

void FakeProvider::on(const QByteArray &method, const QByteArray &path, ScriptedReply reply)
{
    std::lock_guard lock(m_state->mutex);
    m_state->standing.insert(State::routeKey(method, path), std::move(reply));
}

void FakeProvider::enqueue(const QByteArray &method, const QByteArray &path, ScriptedReply reply)
{
    std::lock_guard lock(m_state->mutex);
    m_state->queued[State::routeKey(method, path)].append(std::move(reply));
}

void FakeProvider::handle(const QByteArray &method, const QByteArray &path, Handler handler)
{
    std::lock_guard lock(m_state->mutex);
    m_state->handlers.insert(State::routeKey(method, path), std::move(handler));
}

QList<RecordedRequest> FakeProvider::requests() const
{
    std::lock_guard lock(m_state->mutex);
    return m_state->requests;
}

int FakeProvider::requestCount() const
{
    std::lock_guard lock(m_state->mutex);
    return int(m_state->requests.size());
}

RecordedRequest FakeProvider::lastRequest() const
{
    std::lock_guard lock(m_state->mutex);
    return m_state->requests.isEmpty() ? RecordedRequest {} : m_state->requests.constLast();
}

} // namespace zentrik::test
