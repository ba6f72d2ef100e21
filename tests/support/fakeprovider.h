#pragma once

#include <QByteArray>
#include <QJsonDocument>
#include <QList>
#include <QUrl>

#include <chrono>
#include <functional>
#include <memory>
#include <utility>

namespace zentrik::test {

using Clock = std::chrono::steady_clock;

// What the fake provider answers to one request.
struct ScriptedReply
{
    // A piece of a body, written as soon as its pause has passed. With chunked bodies each
    // piece goes out as its own write, so tests decide where the boundaries fall.
    struct Piece
    {
        QByteArray bytes;
        std::chrono::milliseconds pauseBefore { 0 };
    };

    enum class Ending {
        Complete, // the whole body, properly terminated
        CloseEarly, // the connection is dropped after the pieces, mid-body
        NoAnswer, // nothing at all is sent; the connection stays open until shutdown
    };

    int status = 200;
    QList<std::pair<QByteArray, QByteArray>> headers;
    QByteArray contentType = QByteArrayLiteral("application/json");
    QList<Piece> pieces;
    // Chunked transfer encoding; otherwise a Content-Length body.
    bool chunked = false;
    Ending ending = Ending::Complete;

    [[nodiscard]] static ScriptedReply json(const QByteArray &body, int status = 200);
    [[nodiscard]] static ScriptedReply json(const QJsonDocument &body, int status = 200);
    // A text/event-stream body sent in exactly these pieces, with `pause` before each but
    // the first.
    [[nodiscard]] static ScriptedReply sse(
        const QList<QByteArray> &pieces, std::chrono::milliseconds pause = std::chrono::milliseconds(15));
    // A Content-Length body of which only the first `sent` bytes are written before the
    // connection is closed.
    [[nodiscard]] static ScriptedReply truncated(const QByteArray &body, qsizetype sent);
    [[nodiscard]] static ScriptedReply noAnswer();
    [[nodiscard]] static ScriptedReply redirect(const QByteArray &location, int status = 307);
};

struct RecordedRequest
{
    QByteArray method;
    // As sent on the request line, without the query. A request in a proxy's absolute form
    // ("GET http://host/path") is recorded by its path, with the host in proxiedHost.
    QByteArray path;
    QByteArray proxiedHost;
    QByteArray target; // the whole request target, query included
    QList<std::pair<QByteArray, QByteArray>> headers;
    // Empty for a multipart form, whose parts are in formFields (name, content) instead.
    QByteArray body;
    QList<std::pair<QByteArray, QByteArray>> formFields;
    Clock::time_point arrivedAt;
    // When each piece of the answer was handed to the socket.
    QList<Clock::time_point> piecesSentAt;

    [[nodiscard]] bool hasHeader(QByteArrayView name) const;
    [[nodiscard]] QByteArray header(QByteArrayView name) const;
    [[nodiscard]] QJsonDocument json() const;
};

// A real HTTP server on loopback, on a free port, serving on its own threads. It records
// every request and answers from a script per method and path: queued replies first (one
// each, in order), then the route's standing reply, then a handler, else 404. Any path can
// be scripted, so one fake serves every provider. Destroying it stops it promptly, even
// with requests that were told never to answer.
class FakeProvider
{
public:
    using Handler = std::function<ScriptedReply(const RecordedRequest &request)>;

    struct Options
    {
        // The loopback address to listen on: "127.0.0.1" or "::1".
        QByteArray host = QByteArrayLiteral("127.0.0.1");
        // 0 for any free port.
        int port = 0;
        // PEM files of a certificate and its key: the fake then speaks HTTPS.
        QString certificateFile;
        QString keyFile;
    };

    FakeProvider();
    explicit FakeProvider(const Options &options);
    // Whether it is listening (a fixed port may be taken).
    [[nodiscard]] bool isListening() const;
    ~FakeProvider();
    FakeProvider(const FakeProvider &) = delete;
    FakeProvider &operator=(const FakeProvider &) = delete;

    // "http://127.0.0.1:<port>" ("https", "[::1]" as the options say)
    [[nodiscard]] QUrl baseUrl() const;
    [[nodiscard]] int port() const;

    // The reply for every request to method and path.
    void on(const QByteArray &method, const QByteArray &path, ScriptedReply reply);
    // One reply, used once, before the standing reply.
    void enqueue(const QByteArray &method, const QByteArray &path, ScriptedReply reply);
    // Computes the reply from the request (runs on a server thread).
    void handle(const QByteArray &method, const QByteArray &path, Handler handler);

    [[nodiscard]] QList<RecordedRequest> requests() const;
    [[nodiscard]] int requestCount() const;
    [[nodiscard]] RecordedRequest lastRequest() const;

private:
    struct State;
    std::shared_ptr<State> m_state;
};

} // namespace zentrik::test
