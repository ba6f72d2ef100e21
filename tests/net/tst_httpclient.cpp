#include <QtTest>

#include <QTcpServer>
#include <QTcpSocket>

#include "net/httpclient.h"
#include "support/fakeprovider.h"
#include "support/testregistry.h"

using namespace std::chrono_literals;
using zentrik::HttpClient;
using zentrik::HttpRequest;
using zentrik::HttpResponse;
using zentrik::HttpResult;
using zentrik::TransportError;
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

        std::optional<HttpResult> result;
        client.send(request, this, [&result](const HttpResult &r) { result = r; });
        QTRY_VERIFY(result.has_value());

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

    // A connection closed before any answer is tried again on a new one (a kept-alive
    // connection the server had just dropped, or one that failed while the request waited
    // for it); a server that always closes ends in the caller's error after a few tries,
    // never in a loop.
    void closedBeforeAnyAnswerIsSentOnceMore_data()
    {
        QTest::addColumn<int>("closes");
        QTest::addColumn<bool>("answered");
        QTest::newRow("one close, then an answer") << 1 << true;
        QTest::newRow("always closed") << 1000 << false;
    }

    void closedBeforeAnyAnswerIsSentOnceMore()
    {
        QFETCH(int, closes);
        QFETCH(bool, answered);
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        int connections = 0;
        QByteArray lastBody;
        connect(&server, &QTcpServer::newConnection, this, [&] {
            while (QTcpSocket *socket = server.nextPendingConnection()) {
                const bool close = connections++ < closes;
                connect(socket, &QTcpSocket::readyRead, socket, [socket, close, &lastBody] {
                    const QByteArray request = socket->readAll();
                    lastBody = request.mid(request.indexOf("\r\n\r\n") + 4);
                    if (close) {
                        socket->abort();
                        return;
                    }
                    socket->write("HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Length: 2\r\n"
                                  "Connection: close\r\n\r\n{}");
                    socket->disconnectFromHost();
                });
            }
        });
        HttpClient client;
        std::optional<HttpResult> result;
        client.send(post(QUrl(QStringLiteral("http://127.0.0.1:%1/v1/x").arg(server.serverPort())), R"({"n":1})"),
            this, [&result](const HttpResult &r) { result = r; });
        QTRY_VERIFY(result.has_value());
        QVERIFY2(connections >= 2 && connections <= 4, qPrintable(QString::number(connections)));
        if (answered) {
            const auto *response = std::get_if<HttpResponse>(&*result);
            QVERIFY2(response != nullptr, qPrintable(describe(*result)));
            QCOMPARE(response->status, 200);
            QCOMPARE(lastBody, QByteArray(R"({"n":1})")); // the body goes again too
        } else {
            const auto *error = std::get_if<TransportError>(&*result);
            QVERIFY2(error != nullptr, qPrintable(describe(*result)));
            QCOMPARE(error->kind, TransportError::Kind::ConnectionLost);
        }
        QCOMPARE(client.activeCallCount(), 0);
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
        std::optional<HttpResult> result;
        client.send(request, this, [&result](const HttpResult &r) { result = r; });
        QTRY_VERIFY(result.has_value());
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
        std::optional<HttpResult> result;
        client.send(request, this, [&result](const HttpResult &r) { result = r; });
        QTRY_VERIFY_WITH_TIMEOUT(result.has_value(), 10000);
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
        std::optional<HttpResult> result;
        client.send(request, this, [&result](const HttpResult &r) { result = r; });
        QTRY_VERIFY_WITH_TIMEOUT(result.has_value(), 5000);
        QCOMPARE(int(std::get<TransportError>(*result).kind), int(TransportError::Kind::TimedOut));
    }

    void redirectsDropCredentialsOnlyForAnotherHost_data()
    {
        QTest::addColumn<bool>("otherHost");
        QTest::newRow("same host") << false;
        QTest::newRow("other host") << true;
    }

    void redirectsDropCredentialsOnlyForAnotherHost()
    {
        QFETCH(bool, otherHost);
        FakeProvider origin;
        FakeProvider elsewhere;
        FakeProvider &target = otherHost ? elsewhere : origin;
        const QByteArray location = otherHost
            ? QStringLiteral("http://localhost:%1/moved").arg(elsewhere.port()).toUtf8()
            : QByteArray("/moved");
        origin.on("POST", "/start", ScriptedReply::redirect(location, 307));
        target.on("POST", "/moved", ScriptedReply::json(QByteArray("{}")));

        HttpClient client;
        HttpRequest request = post(origin.baseUrl().resolved(QUrl("/start")), R"({"p":1})");
        request.setHeader("Authorization", "Bearer secret");
        request.setHeader("x-api-key", "secret");
        request.setHeader("anthropic-version", "2023-06-01");
        std::optional<HttpResult> result;
        client.send(request, this, [&result](const HttpResult &r) { result = r; });
        QTRY_VERIFY(result.has_value());
        QCOMPARE(std::get<HttpResponse>(*result).status, 200);

        const auto moved = target.lastRequest();
        QCOMPARE(moved.path, QByteArray("/moved"));
        // 307 keeps the method and the body.
        QCOMPARE(moved.method, QByteArray("POST"));
        QCOMPARE(moved.body, QByteArray(R"({"p":1})"));
        QCOMPARE(moved.header("anthropic-version"), QByteArray("2023-06-01"));
        QCOMPARE(moved.hasHeader("Authorization"), !otherHost);
        QCOMPARE(moved.hasHeader("x-api-key"), !otherHost);
    }

    void endlessRedirectsEndWithAnError()
    {
        FakeProvider fake;
        fake.on("GET", "/loop", ScriptedReply::redirect("/loop", 302));
        HttpClient client;
        HttpRequest request;
        request.url = fake.baseUrl().resolved(QUrl("/loop"));
        std::optional<HttpResult> result;
        client.send(request, this, [&result](const HttpResult &r) { result = r; });
        QTRY_VERIFY(result.has_value());
        QVERIFY(std::holds_alternative<TransportError>(*result));
        QCOMPARE(fake.requestCount(), HttpClient::maxRedirects + 1);
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
        std::optional<HttpResult> result;
        client.send(request, this, [&result](const HttpResult &r) { result = r; });
        QTRY_VERIFY(result.has_value());
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
        std::optional<HttpResult> later;
        fake.on("GET", "/fast", ScriptedReply::json(QByteArray("{}")));
        request.url = fake.baseUrl().resolved(QUrl("/fast"));
        QTest::qWait(200);
        client.send(request, this, [&later](const HttpResult &r) { later = r; });
        QTRY_VERIFY(later.has_value());
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
        // Past the moment the server answered.
        QTest::qWait(250);
        QCOMPARE(calls, 0);
    }
};

ZENTRIK_TEST(TestHttpClient)
#include "tst_httpclient.moc"
