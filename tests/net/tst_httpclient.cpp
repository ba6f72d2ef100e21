#include <QtTest>

#include <QTcpServer>
#include <QTcpSocket>

#include "net/httpclient.h"
#include "support/closingserver.h"
#include "support/fakeprovider.h"
#include "support/testregistry.h"

using namespace std::chrono_literals;
using zentrik::HttpClient;
using zentrik::HttpRequest;
using zentrik::HttpResponse;
using zentrik::HttpResult;
using zentrik::TransportError;
using zentrik::test::ClosingServer;
using zentrik::test::FakeProvider;
using zentrik::test::ScriptedReply;

namespace {

HttpRequest post(const QUrl &url, const QByteArray &body)
{
    HttpRequest request;
    request.method = "POST";
    request.url = url;
    request.setHeader("Content-Type", "application/json");
    request.body = body;
    return request;
}

QString describe(const HttpResult &result)
{
    if (const auto *error = std::get_if<TransportError>(&result)) {
        return QStringLiteral("transport error %1: %2").arg(int(error->kind)).arg(error->description);
    }
    return QStringLiteral("HTTP %1").arg(std::get<HttpResponse>(result).status);
}

// Sends the request, streamed line by line into `lines` when given, and waits for its result.
std::optional<HttpResult> run(
    HttpClient &client, const HttpRequest &request, QList<QByteArray> *lines = nullptr, int timeoutMs = 10000)
{
    std::optional<HttpResult> result;
    QObject context;
    const auto done = [&result](const HttpResult &r) { result = r; };
    if (lines != nullptr) {
        client.stream(request, &context,
            { [lines](QByteArrayView line) {
                 lines->append(line.toByteArray());
                 return true;
             },
                done });
    } else {
        client.send(request, &context, done);
    }
    // The caller tells a timeout from a reply by the empty result.
    (void)QTest::qWaitFor([&result] { return result.has_value(); }, timeoutMs);
    return result;
}

// Whether a call made now on the client, answered only after `pause`, completes: once it has,
// anything the server did before then has reached the client too.
bool laterCallCompletes(HttpClient &client, FakeProvider &fake, std::chrono::milliseconds pause)
{
    ScriptedReply reply = ScriptedReply::json(QByteArray("{}"));
    reply.pieces.first().pauseBefore = pause;
    fake.on("GET", "/later", reply);
    HttpRequest request;
    request.url = fake.baseUrl().resolved(QUrl("/later"));
    const std::optional<HttpResult> result = run(client, request);
    return result && std::holds_alternative<HttpResponse>(*result);
}

// A port on which nothing listens: bound, then released.
int closedPort()
{
    QTcpServer server;
    if (!server.listen(QHostAddress::LocalHost)) {
        return 1;
    }
    return server.serverPort();
}

} // namespace

// One-shot requests against a real loopback server.
class TestHttpClient : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sendsTheRequestAsGiven()
    {
        FakeProvider fake;
        fake.on("POST", "/v1/echo", ScriptedReply::json(QByteArray(R"({"ok":true})"), 201));
        HttpClient client;
        HttpRequest request = post(fake.baseUrl().resolved(QUrl("/v1/echo?x=1")), R"({"a":"é"})");
        request.setHeader("Authorization", "Bearer k");
        request.setHeader("X-Custom", "1");
        request.setHeader("x-custom", "2");

        const std::optional<HttpResult> result = run(client, request);
        QVERIFY(result);

        const auto *response = std::get_if<HttpResponse>(&*result);
        QVERIFY(response != nullptr);
        QCOMPARE(response->status, 201);
        QCOMPARE(response->body, QByteArray(R"({"ok":true})"));
        QCOMPARE(response->header("content-type"), QByteArray("application/json"));

        const auto recorded = fake.lastRequest();
        QCOMPARE(recorded.method, QByteArray("POST"));
        QCOMPARE(recorded.path, QByteArray("/v1/echo"));
        QCOMPARE(recorded.target, QByteArray("/v1/echo?x=1"));
        QCOMPARE(recorded.body, QByteArray(R"({"a":"é"})"));
        QCOMPARE(recorded.header("authorization"), QByteArray("Bearer k"));
        // setHeader replaces a header of the same name, whatever its case.
        QCOMPARE(recorded.header("X-Custom"), QByteArray("2"));
        QCOMPARE(client.activeCallCount(), 0);
    }

    // A server that read the whole request and closed without answering may have acted on
    // it: the request is never sent again, neither by the client nor by Qt underneath.
    void requestTheServerTookIsNeverSentAgain_data()
    {
        QTest::addColumn<QByteArray>("method");
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<bool>("streamed");
        QTest::newRow("POST") << QByteArray("POST") << QByteArray("{\"prompt\":\"draw\"}") << false;
        QTest::newRow("streamed POST") << QByteArray("POST") << QByteArray("{\"stream\":true}") << true;
        QTest::newRow("PUT") << QByteArray("PUT") << QByteArray("audio bytes") << false;
        QTest::newRow("GET") << QByteArray("GET") << QByteArray() << false;
    }

    void requestTheServerTookIsNeverSentAgain()
    {
        QFETCH(QByteArray, method);
        QFETCH(QByteArray, body);
        QFETCH(bool, streamed);
        ClosingServer server;
        HttpClient client;
        HttpRequest request = post(server.baseUrl().resolved(QUrl("/v1/x")), body);
        request.method = method;
        QList<QByteArray> lines;
        const std::optional<HttpResult> result = run(client, request, streamed ? &lines : nullptr);
        QVERIFY(result);
        QTest::qWait(100); // a late second send would have arrived by now
        QCOMPARE(server.requests().size(), 1);
        QCOMPARE(server.connectionCount(), 1);
        QVERIFY(server.requests().constFirst().endsWith(body));
        const auto *error = std::get_if<TransportError>(&*result);
        QVERIFY2(error != nullptr, qPrintable(describe(*result)));
        QCOMPARE(error->kind, TransportError::Kind::ConnectionLost);
        QVERIFY(lines.isEmpty());
        QCOMPARE(client.activeCallCount(), 0);
    }

    // A kept-alive connection the server closed while idle is replaced before the next
    // request is written, so that request goes out once and gets its answer.
    void idleConnectionClosedByTheServerIsReplaced()
    {
        ClosingServer server;
        server.answerFirst(2, 50);
        HttpClient client;
        for (int i = 0; i < 2; ++i) {
            const auto result = run(client, post(server.baseUrl().resolved(QUrl("/v1/x")), QByteArray::number(i)));
            QVERIFY(result);
            QVERIFY2(std::holds_alternative<HttpResponse>(*result), qPrintable(describe(*result)));
            QTRY_COMPARE(server.closedCount(), i + 1);
            QTest::qWait(20); // and the client has had a few turns of its event loop to see it
        }
        QCOMPARE(server.requests().size(), 2);
        QCOMPARE(server.connectionCount(), 2);
    }

    // A body that stops before its end is a lost connection, never a whole answer. Qt lets
    // some of these through without an error, depending on when it sees the close, so each
    // case runs several times.
    void shortBodiesAreLostConnections_data()
    {
        QTest::addColumn<QByteArray>("contentType");
        QTest::addColumn<bool>("chunked");
        QTest::addColumn<bool>("cut");
        QTest::addColumn<bool>("streamed");
        const QByteArray json = "application/json";
        const QByteArray png = "image/png";
        QTest::newRow("JSON, length, cut") << json << false << true << false;
        QTest::newRow("JSON, chunked, cut") << json << true << true << false;
        QTest::newRow("JSON, chunked, whole") << json << true << false << false;
        QTest::newRow("PNG, length, cut") << png << false << true << false;
        QTest::newRow("PNG, chunked, cut") << png << true << true << false;
        QTest::newRow("PNG, chunked, whole") << png << true << false << false;
        QTest::newRow("events, length, cut") << QByteArray("text/event-stream") << false << true << true;
    }

    void shortBodiesAreLostConnections()
    {
        QFETCH(QByteArray, contentType);
        QFETCH(bool, chunked);
        QFETCH(bool, cut);
        QFETCH(bool, streamed);
        QByteArray body;
        if (contentType == "image/png") {
            // A picture's shape as far as its end goes: signature, data, closing chunk.
            body = QByteArray("\x89PNG\r\n\x1a\n", 8) + QByteArray(500, 'p')
                + QByteArray("\0\0\0\0IEND\xae\x42\x60\x82", 12);
        } else if (streamed) {
            for (int i = 0; i < 40; ++i) {
                body += "data: {\"n\":" + QByteArray::number(i) + "}\n\n";
            }
        } else {
            body = "{\"choices\":[{\"message\":{\"content\":\"" + QByteArray(300, 'x') + "\"}}]}";
        }
        const qsizetype sent = cut ? body.size() * 2 / 3 : body.size();
        FakeProvider fake;
        ScriptedReply reply = ScriptedReply::truncated(body, sent);
        reply.contentType = contentType;
        if (chunked) {
            reply.headers.clear();
            reply.chunked = true;
            reply.pieces = { { body.left(sent / 2), 0ms }, { body.mid(sent / 2, sent - sent / 2), 0ms } };
            reply.ending = cut ? ScriptedReply::Ending::CloseEarly : ScriptedReply::Ending::Complete;
        }
        fake.on("POST", "/x", reply);
        HttpClient client;
        for (int attempt = 0; attempt < 15; ++attempt) {
            QList<QByteArray> lines;
            const auto result
                = run(client, post(fake.baseUrl().resolved(QUrl("/x")), "{}"), streamed ? &lines : nullptr);
            QVERIFY(result);
            const QString what = QStringLiteral("run %1: %2").arg(attempt).arg(describe(*result));
            if (!cut) {
                const auto *response = std::get_if<HttpResponse>(&*result);
                QVERIFY2(response != nullptr, qPrintable(what));
                QCOMPARE(response->body, body);
                continue;
            }
            const auto *error = std::get_if<TransportError>(&*result);
            QVERIFY2(error != nullptr, qPrintable(what));
            QCOMPARE(error->kind, TransportError::Kind::ConnectionLost);
            if (streamed) {
                // Lines that arrived whole before the cut were handed over, nothing more.
                QVERIFY(lines.size() < body.count('\n'));
                QCOMPARE(lines, body.split('\n').mid(0, lines.size()));
            }
        }
    }

    // Error statuses are answers with their body, not transport failures.
    void errorStatusesKeepTheirBody_data()
    {
        QTest::addColumn<int>("status");
        for (int status : { 400, 401, 403, 404, 409, 429, 500, 503 }) {
            QTest::addRow("%d", status) << status;
        }
    }

    void errorStatusesKeepTheirBody()
    {
        QFETCH(int, status);
        FakeProvider fake;
        const QByteArray body = R"({"error":{"message":"nope"}})";
        fake.on("GET", "/x", ScriptedReply::json(body, status));
        HttpClient client;
        HttpRequest request;
        request.url = fake.baseUrl().resolved(QUrl("/x"));
        const std::optional<HttpResult> result = run(client, request);
        QVERIFY(result);
        const auto *response = std::get_if<HttpResponse>(&*result);
        QVERIFY2(response != nullptr, qPrintable(describe(*result)));
        QCOMPARE(response->status, status);
        QCOMPARE(response->body, body);
    }

    void transportFailuresHaveTheirKind_data()
    {
        QTest::addColumn<QString>("scenario");
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("description");
        using K = TransportError::Kind;
        QTest::newRow("no answer") << "silent" << int(K::TimedOut) << QString();
        QTest::newRow("closed mid-body") << "truncated" << int(K::ConnectionLost) << QString();
        QTest::newRow("unknown host") << "invalid host" << int(K::HostNotFound) << QString();
        QTest::newRow("refused") << "refused" << int(K::Other) << "Connection refused";
    }

    void transportFailuresHaveTheirKind()
    {
        QFETCH(QString, scenario);
        QFETCH(int, kind);
        QFETCH(QString, description);
        FakeProvider fake;
        fake.on("POST", "/silent", ScriptedReply::noAnswer());
        fake.on("POST", "/truncated", ScriptedReply::truncated(QByteArray(400, 'x'), 100));
        QUrl url = fake.baseUrl().resolved(QUrl(QLatin1Char('/') + scenario));
        if (scenario == "invalid host") {
            url = QUrl("http://provider.zentrik.invalid/v1/chat/completions");
        } else if (scenario == "refused") {
            url = QUrl(QStringLiteral("http://127.0.0.1:%1/").arg(closedPort()));
        }
        HttpClient client;
        HttpRequest request = post(url, "{}");
        request.timeout = 300ms;
        const std::optional<HttpResult> result = run(client, request, nullptr, 10000);
        QVERIFY(result);
        const auto *error = std::get_if<TransportError>(&*result);
        QVERIFY(error != nullptr);
        QCOMPARE(int(error->kind), kind);
        QVERIFY(!error->description.isEmpty());
        if (!description.isEmpty()) {
            QCOMPARE(error->description, description);
        }
    }

    void clientTimeoutAppliesWhenTheRequestSetsNone()
    {
        FakeProvider fake;
        fake.on("GET", "/silent", ScriptedReply::noAnswer());
        HttpClient client;
        client.setTimeout(200ms);
        HttpRequest request;
        request.url = fake.baseUrl().resolved(QUrl("/silent"));
        const std::optional<HttpResult> result = run(client, request, nullptr, 5000);
        QVERIFY(result);
        QCOMPARE(int(std::get<TransportError>(*result).kind), int(TransportError::Kind::TimedOut));
    }

    // Keys stay with the host they were given to; a body (the prompt) goes on only to the
    // same server, and a request the redirect would carry elsewhere fails instead.
    void redirectsKeepKeysAndBodiesWithTheirServer_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<bool>("otherServer");
        QTest::addColumn<QByteArray>("arrivingMethod"); // empty: nothing may arrive
        QTest::newRow("307, same server") << 307 << false << QByteArray("POST");
        QTest::newRow("307, other port") << 307 << true << QByteArray();
        QTest::newRow("308, other port") << 308 << true << QByteArray();
        QTest::newRow("303, other port") << 303 << true << QByteArray("GET");
        QTest::newRow("302, other port") << 302 << true << QByteArray("GET");
    }

    void redirectsKeepKeysAndBodiesWithTheirServer()
    {
        QFETCH(int, status);
        QFETCH(bool, otherServer);
        QFETCH(QByteArray, arrivingMethod);
        FakeProvider origin;
        FakeProvider elsewhere;
        FakeProvider &target = otherServer ? elsewhere : origin;
        const QByteArray location = otherServer
            ? QStringLiteral("http://127.0.0.1:%1/moved").arg(elsewhere.port()).toUtf8()
            : QByteArray("/moved");
        origin.on("POST", "/start", ScriptedReply::redirect(location, status));
        target.on(arrivingMethod.isEmpty() ? "POST" : arrivingMethod, "/moved", ScriptedReply::json(QByteArray("{}")));

        HttpClient client;
        HttpRequest request = post(origin.baseUrl().resolved(QUrl("/start")), "{\"p\":1}");
        request.setHeader("Authorization", "Bearer secret-key-1");
        request.setHeader("x-api-key", "secret-key-1");
        request.setHeader("anthropic-version", "2023-06-01");
        const std::optional<HttpResult> result = run(client, request);
        QVERIFY(result);
        if (arrivingMethod.isEmpty()) {
            const auto *error = std::get_if<TransportError>(&*result);
            QVERIFY2(error != nullptr, qPrintable(describe(*result)));
            QVERIFY2(error->description.contains(QStringLiteral("127.0.0.1:%1").arg(elsewhere.port())),
                qPrintable(error->description));
            QCOMPARE(elsewhere.requestCount(), 0);
            return;
        }
        QVERIFY2(std::holds_alternative<HttpResponse>(*result), qPrintable(describe(*result)));
        QCOMPARE(std::get<HttpResponse>(*result).status, 200);
        const auto moved = target.lastRequest();
        QCOMPARE(moved.path, QByteArray("/moved"));
        QCOMPARE(moved.method, arrivingMethod);
        QCOMPARE(moved.body, arrivingMethod == "POST" ? QByteArray("{\"p\":1}") : QByteArray());
        QCOMPARE(moved.header("anthropic-version"), QByteArray("2023-06-01"));
        QCOMPARE(moved.hasHeader("Authorization"), !otherServer);
        QCOMPARE(moved.hasHeader("x-api-key"), !otherServer);
    }

    void endlessRedirectsEndWithAnError()
    {
        FakeProvider fake;
        fake.on("GET", "/loop", ScriptedReply::redirect("/loop", 302));
        HttpClient client;
        HttpRequest request;
        request.url = fake.baseUrl().resolved(QUrl("/loop"));
        const std::optional<HttpResult> result = run(client, request);
        QVERIFY(result);
        QVERIFY(std::holds_alternative<TransportError>(*result));
        QCOMPARE(fake.requestCount(), HttpClient::maxRedirects + 1);
    }

    // A provider that quotes the key back, in an error, a streamed line or a header, hands
    // back "[KEY]" in its place; so does a quote of either half of an id:secret key.
    void keysQuotedBackAreReplaced_data()
    {
        QTest::addColumn<QByteArray>("header");
        QTest::addColumn<QByteArray>("value");
        QTest::addColumn<QByteArray>("quoted");
        QTest::addColumn<bool>("streamed");
        const QByteArray key = "sk-proj-quoted0123456789";
        QTest::newRow("bearer, error body") << QByteArray("Authorization") << "Bearer " + key << key << false;
        QTest::newRow("bearer, streamed line") << QByteArray("Authorization") << "Bearer " + key << key << true;
        QTest::newRow("x-api-key") << QByteArray("x-api-key") << key << key << false;
        QTest::newRow("secret half of a pair")
            << QByteArray("Authorization") << QByteArray("Key 7f3e-id-part:c0ffee-secret-part")
            << QByteArray("c0ffee-secret-part") << false;
    }

    void keysQuotedBackAreReplaced()
    {
        QFETCH(QByteArray, header);
        QFETCH(QByteArray, value);
        QFETCH(QByteArray, quoted);
        QFETCH(bool, streamed);
        FakeProvider fake;
        ScriptedReply reply;
        if (streamed) {
            reply = ScriptedReply::sse({ "data: {\"echo\":\"" + quoted + "\"}\n\n", "data: [DONE]\n\n" });
        } else {
            reply
                = ScriptedReply::json("{\"error\":{\"message\":\"Incorrect API key provided: " + quoted + "\"}}", 401);
        }
        reply.headers.append({ "X-Echo", quoted });
        fake.on("POST", "/x", reply);
        HttpClient client;
        HttpRequest request = post(fake.baseUrl().resolved(QUrl("/x")), "{}");
        request.setHeader(header, value);
        QList<QByteArray> lines;
        const auto result = run(client, request, streamed ? &lines : nullptr);
        QVERIFY(result);
        QCOMPARE(fake.lastRequest().header(header), value); // the server did get the key
        const auto &response = std::get<HttpResponse>(*result);
        const QByteArray seen = streamed ? lines.join() : response.body;
        QVERIFY2(!seen.contains(quoted) && seen.contains("[KEY]"), seen.constData());
        QCOMPARE(response.header("X-Echo"), QByteArray("[KEY]"));
    }

    // A header value with a line break would end the header and start one of its own; the
    // request is refused before anything is sent, and the error does not repeat the value.
    void headersWithControlCharactersAreNeverSent_data()
    {
        QTest::addColumn<QByteArray>("key");
        QTest::newRow("CR LF") << QByteArray("sk-abc\r\nX-Injected: 1");
        QTest::newRow("LF") << QByteArray("sk-abc\nX-Injected: 1");
        QTest::newRow("NUL") << QByteArray("sk-abc\0def", 10);
        QTest::newRow("DEL") << QByteArray("sk-abc\x7f");
    }

    void headersWithControlCharactersAreNeverSent()
    {
        QFETCH(QByteArray, key);
        FakeProvider fake;
        fake.on("POST", "/x", ScriptedReply::json(QByteArray("{}")));
        HttpClient client;
        HttpRequest request = post(fake.baseUrl().resolved(QUrl("/x")), "{}");
        request.setHeader("Authorization", "Bearer " + key);
        std::optional<HttpResult> result;
        client.send(request, this, [&result](const HttpResult &r) { result = r; });
        QVERIFY(!result.has_value()); // never inside send()
        QTRY_VERIFY(result.has_value());
        const auto *error = std::get_if<TransportError>(&*result);
        QVERIFY2(error != nullptr, qPrintable(describe(*result)));
        QVERIFY(!error->description.contains(QLatin1String("sk-abc")));
        QVERIFY(error->description.contains(QLatin1String("API key")));
        QVERIFY(laterCallCompletes(client, fake, 0ms));
        QCOMPARE(fake.requestCount(), 1); // the later call's alone
        QCOMPARE(client.activeCallCount(), 0);
    }

    // Past the size limit a reply is refused with an error instead of being held: announced
    // up front, or found out as a streamed body without a length grows.
    void oversizedRepliesAreRefused_data()
    {
        QTest::addColumn<bool>("streamed");
        QTest::newRow("announced 100 MB") << false;
        QTest::newRow("streamed 100 MB") << true;
    }

    void oversizedRepliesAreRefused()
    {
        QFETCH(bool, streamed);
        const QByteArray megabyte = QByteArray("data: ") + QByteArray(1024 * 1024 - 8, 'x') + "\n\n";
        FakeProvider fake;
        ScriptedReply reply;
        if (streamed) {
            reply = ScriptedReply::sse({}, 0ms);
            for (int i = 0; i < 100; ++i) {
                reply.pieces.append({ megabyte, 0ms }); // one shared buffer
            }
        } else {
            reply = ScriptedReply::truncated(QByteArray(), 0);
            reply.headers = { { "X-Fake-Announced-Length", QByteArray::number(100 * 1024 * 1024) } };
            reply.pieces = { { megabyte, 0ms } };
        }
        fake.on("POST", "/x", reply);
        HttpClient client;
        QList<QByteArray> lines;
        const auto result
            = run(client, post(fake.baseUrl().resolved(QUrl("/x")), "{}"), streamed ? &lines : nullptr, 30000);
        QVERIFY(result);
        const qsizetype handedOver = lines.join().size();
        const auto *error = std::get_if<TransportError>(&*result);
        QVERIFY2(error != nullptr, qPrintable(describe(*result)));
        QVERIFY2(error->description.contains(QLatin1String("64 MB")), qPrintable(error->description));
        QVERIFY(handedOver <= HttpClient::maxReplySize);
    }

    // The silence timeout never fires on a body that trickles in; the total deadline of a
    // whole-reply request does.
    void dribbledAnswerEndsAtTheDeadline()
    {
        FakeProvider fake;
        ScriptedReply reply = ScriptedReply::json(QByteArray());
        reply.pieces.clear();
        for (int i = 0; i < 200; ++i) {
            reply.pieces.append({ QByteArray(1, 'x'), 20ms });
        }
        fake.on("POST", "/x", reply);
        HttpClient client;
        client.setTimeout(300ms);
        HttpRequest request = post(fake.baseUrl().resolved(QUrl("/x")), "{}");
        request.deadline = 500ms;
        QElapsedTimer clock;
        clock.start();
        const auto result = run(client, request);
        QVERIFY(result);
        const auto *error = std::get_if<TransportError>(&*result);
        QVERIFY2(error != nullptr, qPrintable(describe(*result)));
        QCOMPARE(error->kind, TransportError::Kind::TimedOut);
        // Well before the 4 s the whole body takes.
        QVERIFY2(clock.elapsed() < 2500, qPrintable(QString::number(clock.elapsed())));
    }

    void honoursTheProxyVariables()
    {
        FakeProvider proxy;
        proxy.on("GET", "http://api.provider.invalid/v1/models", ScriptedReply::json(QByteArray(R"({"data":[]})")));
        const QByteArray saved = qgetenv("http_proxy");
        qputenv("http_proxy", proxy.baseUrl().toString().toUtf8());
        auto restore = qScopeGuard([&saved] {
            if (saved.isNull()) {
                qunsetenv("http_proxy");
            } else {
                qputenv("http_proxy", saved);
            }
        });
        HttpClient client;
        HttpRequest request;
        request.url = QUrl("http://api.provider.invalid/v1/models");
        const std::optional<HttpResult> result = run(client, request);
        QVERIFY(result);
        QVERIFY(std::holds_alternative<HttpResponse>(*result));
        QCOMPARE(proxy.lastRequest().target, QByteArray("http://api.provider.invalid/v1/models"));
    }

    void cancelledCallsReportNothing()
    {
        FakeProvider fake;
        ScriptedReply slow = ScriptedReply::json(QByteArray("{}"));
        slow.pieces.first().pauseBefore = 150ms;
        fake.on("GET", "/slow", slow);
        HttpClient client;
        HttpRequest request;
        request.url = fake.baseUrl().resolved(QUrl("/slow"));
        int calls = 0;
        const auto id = client.send(request, this, [&calls](const HttpResult &) { ++calls; });
        QTRY_COMPARE(fake.requestCount(), 1);
        client.cancel(id);
        QVERIFY(!client.isActive(id));
        client.cancel(id); // a second cancel is harmless

        // A later call on the same client still completes, after the slow one would have.
        QVERIFY(laterCallCompletes(client, fake, 200ms));
        QCOMPARE(calls, 0);
    }

    void destroyedContextCancelsTheCall()
    {
        FakeProvider fake;
        ScriptedReply slow = ScriptedReply::json(QByteArray("{}"));
        slow.pieces.first().pauseBefore = 100ms;
        fake.on("GET", "/slow", slow);
        HttpClient client;
        HttpRequest request;
        request.url = fake.baseUrl().resolved(QUrl("/slow"));
        int calls = 0;
        auto context = std::make_unique<QObject>();
        const auto id = client.send(request, context.get(), [&calls](const HttpResult &) { ++calls; });
        QTRY_COMPARE(fake.requestCount(), 1);
        context.reset();
        QVERIFY(!client.isActive(id));
        QVERIFY(laterCallCompletes(client, fake, 200ms)); // past the moment the server answered
        QCOMPARE(calls, 0);
    }
};

ZENTRIK_TEST(TestHttpClient)
#include "tst_httpclient.moc"
