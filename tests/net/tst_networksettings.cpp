#include <QtTest>

#include <QHostInfo>
#include <QTcpServer>

#include "net/httpclient.h"
#include "net/networksettings.h"
#include "support/fakeprovider.h"
#include "support/testregistry.h"

using zentrik::HttpClient;
using zentrik::HttpRequest;
using zentrik::HttpResponse;
using zentrik::HttpResult;
using zentrik::NetworkSettings;
using zentrik::ProxySettings;
using zentrik::TransportError;
using zentrik::test::FakeProvider;
using zentrik::test::ScriptedReply;

namespace {

// The name only the test proxies resolve (scripts/test hands every host under it to the
// upstream port, where the tests listen).
const QString proxiedHost = QStringLiteral("models.zentrik-proxy.test");

HttpResult fetch(HttpClient &client, const QUrl &url, const QByteArray &body = {})
{
    HttpRequest request;
    request.url = url;
    if (!body.isEmpty()) {
        request.method = "POST";
        request.setHeader("Content-Type", "application/json");
        request.body = body;
    }
    std::optional<HttpResult> result;
    QEventLoop loop;
    client.send(request, &loop, [&](const HttpResult &answer) {
        result = answer;
        loop.quit();
    });
    QTimer::singleShot(15000, &loop, &QEventLoop::quit);
    loop.exec();
    return result.value_or(TransportError { TransportError::Kind::Other, QStringLiteral("no answer in 15 s") });
}

int statusOf(const HttpResult &result)
{
    const auto *response = std::get_if<HttpResponse>(&result);
    return response ? response->status : 0;
}

QString failureOf(const HttpResult &result)
{
    const auto *error = std::get_if<TransportError>(&result);
    return error ? error->description : QString();
}

ProxySettings manualProxy(const QString &address, const QString &user = {}, const QString &password = {})
{
    auto parsed = ProxySettings::parse(address);
    ProxySettings proxy = std::get<ProxySettings>(parsed);
    proxy.user = user;
    proxy.password = password;
    return proxy;
}

HttpClient *clientWith(QObject *parent, const ProxySettings &proxy, const QString &caFile = {})
{
    auto *client = new HttpClient(parent);
    client->setNetworkSettings(NetworkSettings { proxy, caFile });
    return client;
}

ProxySettings noProxy()
{
    ProxySettings proxy;
    proxy.mode = ProxySettings::Mode::none;
    return proxy;
}

int closedPort()
{
    QTcpServer server;
    server.listen(QHostAddress::LocalHost);
    return server.serverPort();
}

} // namespace

// The proxy settings against real proxies: the two tinyproxy instances scripts/test starts
// (one asking for a password), which alone can reach the fake under a made-up host name.
class ProxyTest : public QObject
{
    Q_OBJECT

    QString m_open;
    QString m_auth;
    QString m_user;
    QString m_password;
    int m_upstreamPort = 0;

    void needProxies()
    {
        if (m_open.isEmpty()) {
            QSKIP("needs the proxies scripts/test starts (tinyproxy)");
        }
    }

private Q_SLOTS:
    void initTestCase()
    {
        m_open = qEnvironmentVariable("ZENTRIK_TEST_PROXY");
        m_auth = qEnvironmentVariable("ZENTRIK_TEST_AUTH_PROXY");
        m_user = qEnvironmentVariable("ZENTRIK_TEST_AUTH_PROXY_USER");
        m_password = qEnvironmentVariable("ZENTRIK_TEST_AUTH_PROXY_PASSWORD");
        m_upstreamPort = qEnvironmentVariableIntValue("ZENTRIK_TEST_PROXY_UPSTREAM_PORT");
        // The variables a developer's shell may set must not decide these tests.
        for (const char *name : { "http_proxy", "https_proxy", "HTTP_PROXY", "HTTPS_PROXY", "no_proxy", "NO_PROXY",
                 "all_proxy", "ALL_PROXY" }) {
            qunsetenv(name);
        }
    }

    void carriesRequestsToWhatOnlyItCanReach_data()
    {
        QTest::addColumn<bool>("withPassword");
        QTest::newRow("open proxy") << false;
        QTest::newRow("proxy with a password") << true;
    }

    void carriesRequestsToWhatOnlyItCanReach()
    {
        needProxies();
        QFETCH(bool, withPassword);
        FakeProvider upstream(FakeProvider::Options { "127.0.0.1", m_upstreamPort, {}, {} });
        QVERIFY(upstream.isListening());
        upstream.on("POST", "/v1/chat/completions", ScriptedReply::json(QByteArray(R"({"ok":true})")));
        HttpClient *client = withPassword ? clientWith(this, manualProxy(m_auth, m_user, m_password))
                                          : clientWith(this, manualProxy(m_open));
        const QUrl url(QStringLiteral("http://%1/v1/chat/completions").arg(proxiedHost));

        const HttpResult result = fetch(*client, url, R"({"model":"m"})");
        QCOMPARE(statusOf(result), 200);
        QCOMPARE(upstream.requestCount(), 1);
        QCOMPARE(upstream.lastRequest().proxiedHost, proxiedHost.toUtf8() + ":80");
        QCOMPARE(upstream.lastRequest().body, QByteArray(R"({"model":"m"})"));
        QVERIFY(upstream.lastRequest().header("Via").contains("tinyproxy"));

        // Without the proxy the name leads nowhere.
        HttpClient *direct = clientWith(this, noProxy());
        QVERIFY(std::holds_alternative<TransportError>(fetch(*direct, url)));
        QCOMPARE(upstream.requestCount(), 1);
    }

    void namesTheProxyThatFailed_data()
    {
        QTest::addColumn<QString>("proxy"); // "auth", "refusing", "closed"
        QTest::addColumn<QString>("password");
        QTest::addColumn<QString>("message");
        QTest::newRow("no password") << "auth"
                                     << ""
                                     << "Proxy needs a password";
        // tinyproxy answers a wrong password with 401 as if it were the server; proxies that
        // say 407, as the standard has it, are played by the fake.
        QTest::newRow("wrong password") << "refusing"
                                        << "wrong"
                                        << "Proxy refused the user name or password";
        QTest::newRow("nothing listens") << "closed"
                                         << ""
                                         << "Proxy refused the connection";
    }

    void namesTheProxyThatFailed()
    {
        QFETCH(QString, proxy);
        QFETCH(QString, password);
        QFETCH(QString, message);
        FakeProvider refusing;
        ScriptedReply refusal = ScriptedReply::json(QByteArray("{}"), 407);
        refusal.headers.append({ QByteArray("Proxy-Authenticate"), QByteArray(R"(Basic realm="proxy")") });
        refusing.on("GET", "/v1/models", refusal);
        QString address
            = QStringLiteral("127.0.0.1:%1").arg(proxy == QLatin1String("closed") ? closedPort() : refusing.port());
        if (proxy == QLatin1String("auth")) {
            needProxies();
            address = m_auth;
        }
        HttpClient *client = clientWith(this, manualProxy(address, password.isEmpty() ? QString() : "ann", password));
        const HttpResult result = fetch(*client, QUrl(QStringLiteral("http://%1/v1/models").arg(proxiedHost)));
        QCOMPARE(failureOf(result), QStringLiteral("%1 (%2)").arg(message, address));
        if (proxy == QLatin1String("refusing")) {
            // The credentials went with the one and only attempt.
            QCOMPARE(refusing.requestCount(), 1);
            QCOMPARE(
                refusing.lastRequest().header("Proxy-Authorization"), "Basic " + QByteArray("ann:wrong").toBase64());
        }
    }

    // A server on this computer is reached directly, whatever proxy is set or the
    // environment names, so a local model keeps working behind a company proxy.
    void neverSendsThisComputerThroughAProxy_data()
    {
        QTest::addColumn<QString>("host");
        QTest::addColumn<QByteArray>("listenOn");
        QTest::newRow("localhost") << "localhost" << QByteArray("127.0.0.1");
        QTest::newRow("127.0.0.1") << "127.0.0.1" << QByteArray("127.0.0.1");
        QTest::newRow("::1") << "[::1]" << QByteArray("::1");
    }

    void neverSendsThisComputerThroughAProxy()
    {
        needProxies();
        QFETCH(QString, host);
        QFETCH(QByteArray, listenOn);
        FakeProvider local(FakeProvider::Options { listenOn, 0, {}, {} });
        if (!local.isListening()) {
            QSKIP("no loopback address for this family");
        }
        local.on("GET", "/v1/models", ScriptedReply::json(QByteArray(R"({"data":[]})")));
        const QUrl url(QStringLiteral("http://%1:%2/v1/models").arg(host).arg(local.port()));

        HttpClient *manual = clientWith(this, manualProxy(m_open));
        QCOMPARE(statusOf(fetch(*manual, url)), 200);
        // The system's settings, as the environment gives them, pointing at a dead proxy.
        qputenv("http_proxy", QStringLiteral("http://127.0.0.1:%1").arg(closedPort()).toUtf8());
        HttpClient *system = clientWith(this, ProxySettings {});
        QCOMPARE(statusOf(fetch(*system, url)), 200);
        qunsetenv("http_proxy");
        QCOMPARE(local.requestCount(), 2);
        for (const auto &request : local.requests()) {
            QVERIFY(!request.hasHeader("Via"));
            QVERIFY(request.proxiedHost.isEmpty());
        }
    }

    // The default follows the environment (http_proxy and no_proxy); "none" ignores it.
    void systemSettingsComeFromTheEnvironment()
    {
        needProxies();
        FakeProvider upstream(FakeProvider::Options { "127.0.0.1", m_upstreamPort, {}, {} });
        upstream.on("GET", "/v1/models", ScriptedReply::json(QByteArray(R"({"data":[]})")));
        const QUrl url(QStringLiteral("http://%1/v1/models").arg(proxiedHost));
        qputenv("http_proxy", QStringLiteral("http://%1").arg(m_open).toUtf8());

        HttpClient *system = clientWith(this, ProxySettings {});
        QCOMPARE(statusOf(fetch(*system, url)), 200);
        HttpClient *none = clientWith(this, noProxy());
        QVERIFY(std::holds_alternative<TransportError>(fetch(*none, url)));
        qputenv("no_proxy", ".zentrik-proxy.test");
        HttpClient *excepted = clientWith(this, ProxySettings {});
        QVERIFY(std::holds_alternative<TransportError>(fetch(*excepted, url)));
        qunsetenv("no_proxy");
        qunsetenv("http_proxy");
        QCOMPARE(upstream.requestCount(), 1);
    }
};
ZENTRIK_TEST(ProxyTest)

// A provider whose certificate comes from an authority the system does not know (a company
// gateway's): refused until that authority's PEM file is named, and never by switching
// verification off.
class TlsTrustTest : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    std::unique_ptr<FakeProvider> m_server;

    bool openssl(const QStringList &arguments)
    {
        QProcess process;
        process.setWorkingDirectory(m_dir.path());
        process.start(QStringLiteral("openssl"), arguments);
        return process.waitForFinished(30000) && process.exitStatus() == QProcess::NormalExit
            && process.exitCode() == 0;
    }

private Q_SLOTS:
    void initTestCase()
    {
        if (QStandardPaths::findExecutable(QStringLiteral("openssl")).isEmpty()) {
            QSKIP("needs the openssl program");
        }
        const QStringList ec { "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1", "-nodes" };
        QVERIFY(openssl(QStringList { "req", "-x509" } + ec
            + QStringList { "-keyout", "ca.key", "-out", "ca.pem", "-days", "2", "-subj", "/CN=Zentrik Test CA",
                "-addext", "basicConstraints=critical,CA:TRUE", "-addext", "keyUsage=critical,keyCertSign" }));
        QVERIFY(openssl(QStringList { "req" } + ec
            + QStringList { "-keyout", "server.key", "-out", "server.csr", "-subj", "/CN=localhost" }));
        QFile extensions(m_dir.filePath("server.ext"));
        QVERIFY(extensions.open(QIODevice::WriteOnly));
        // The machine's own name too: it is no loopback name, so it can go through a proxy.
        extensions.write("subjectAltName=IP:127.0.0.1,DNS:localhost,DNS:" + QHostInfo::localHostName().toUtf8()
            + "\nextendedKeyUsage=serverAuth\n");
        extensions.close();
        QVERIFY(openssl({ "x509", "-req", "-in", "server.csr", "-CA", "ca.pem", "-CAkey", "ca.key", "-CAcreateserial",
            "-out", "server.pem", "-days", "2", "-extfile", "server.ext" }));
        m_server = std::make_unique<FakeProvider>(
            FakeProvider::Options { "127.0.0.1", 0, m_dir.filePath("server.pem"), m_dir.filePath("server.key") });
        QVERIFY(m_server->isListening());
        m_server->on("GET", "/v1/models", ScriptedReply::json(QByteArray(R"({"data":[]})")));
    }

    void cleanupTestCase() { m_server.reset(); }

    void trustsTheServerOnlyWithItsAuthority_data()
    {
        QTest::addColumn<QString>("caFile");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("failure"); // a part of the description
        QTest::newRow("system authorities only") << QString() << 0 << "certificate";
        QTest::newRow("with the CA file") << "ca.pem" << 200 << "";
        QTest::newRow("the server's own certificate is no authority") << "server.pem" << 0 << "certificate";
        QTest::newRow("unreadable CA file") << "missing.pem" << 0 << "missing.pem cannot be read";
        QTest::newRow("no certificate in it") << "server.ext" << 0 << "server.ext holds no PEM certificate";
    }

    void trustsTheServerOnlyWithItsAuthority()
    {
        QFETCH(QString, caFile);
        QFETCH(int, status);
        QFETCH(QString, failure);
        HttpClient client;
        client.setNetworkSettings(NetworkSettings { noProxy(), caFile.isEmpty() ? QString() : m_dir.filePath(caFile) });
        const HttpResult result = fetch(client, QUrl(m_server->baseUrl().toString() + "/v1/models"));
        QCOMPARE(statusOf(result), status);
        if (!failure.isEmpty()) {
            QVERIFY2(failureOf(result).contains(failure, Qt::CaseInsensitive), qPrintable(failureOf(result)));
        }
    }

    // A secure request through a proxy that wants a password: the credentials go with the
    // CONNECT, and the certificate is checked end to end.
    void reachesASecureProviderThroughAProxyWithAPassword()
    {
        const QString proxy = qEnvironmentVariable("ZENTRIK_TEST_AUTH_PROXY");
        if (proxy.isEmpty()) {
            QSKIP("needs the proxies scripts/test starts (tinyproxy)");
        }
        const QString name = QHostInfo::localHostName();
        const QList<QHostAddress> addresses = QHostInfo::fromName(name).addresses();
        if (addresses.isEmpty() || addresses.first().protocol() != QAbstractSocket::IPv4Protocol) {
            QSKIP("the machine's own name does not lead to an IPv4 address");
        }
        FakeProvider server(FakeProvider::Options {
            addresses.first().toString().toUtf8(), 0, m_dir.filePath("server.pem"), m_dir.filePath("server.key") });
        QVERIFY(server.isListening());
        server.on("GET", "/v1/models", ScriptedReply::json(QByteArray(R"({"data":[]})")));
        ProxySettings settings = std::get<ProxySettings>(ProxySettings::parse(proxy));
        const QUrl url(QStringLiteral("https://%1:%2/v1/models").arg(name).arg(server.port()));
        HttpClient client;
        client.setNetworkSettings(NetworkSettings { settings, m_dir.filePath("ca.pem") });
        QCOMPARE(failureOf(fetch(client, url)), QStringLiteral("Proxy needs a password (%1)").arg(proxy));
        settings.user = qEnvironmentVariable("ZENTRIK_TEST_AUTH_PROXY_USER");
        settings.password = qEnvironmentVariable("ZENTRIK_TEST_AUTH_PROXY_PASSWORD");
        client.setNetworkSettings(NetworkSettings { settings, m_dir.filePath("ca.pem") });
        const HttpResult result = fetch(client, url);
        QVERIFY2(statusOf(result) == 200, qPrintable(failureOf(result)));
        QCOMPARE(server.requestCount(), 1);
    }
};
ZENTRIK_TEST(TlsTrustTest)

#include "tst_networksettings.moc"
