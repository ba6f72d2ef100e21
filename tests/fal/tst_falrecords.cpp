#include <QtTest>

#include <QJsonDocument>
#include <QSysInfo>
#include <QUrlQuery>

#include "fal/falqueuestatus.h"
#include "fal/falrequestsender.h"
#include "support/testregistry.h"

using namespace zentrik;
using namespace zentrik::fal;

Q_DECLARE_METATYPE(zentrik::fal::Payload::Kind)

// The fal client's records and requests without the network: status decoding, the payload's
// JSON mapping, application ids, headers, query items and the proxy.
class TestFalRecords : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void decodesStatus_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<int>("state"); // -1: fails
        QTest::addColumn<int>("position");
        QTest::addColumn<QString>("responseUrl");
        QTest::addColumn<int>("logCount");
        QTest::addColumn<QString>("error");
        const auto row = [](const char *name, const QByteArray &json, const int &state, const int &position,
                             const QString &responseUrl, const int &logCount, const QString &error) {
            QTest::newRow(name) << json << state << position << responseUrl << logCount << error;
        };

        row("queued at position 0",
            QByteArray("{\"status\":\"IN_QUEUE\",\"queue_position\":0,\"response_url\":\"https://q/r\"}"),
            int(QueueStatus::State::inQueue), 0, "https://q/r", 0, "");
        row("in progress without logs", QByteArray(R"({"status":"IN_PROGRESS"})"), int(QueueStatus::State::inProgress),
            0, "", 0, "");
        row("in progress with logs",
            QByteArray(R"({"status":"IN_PROGRESS","logs":[)"
                       R"({"message":"a","timestamp":"t1","labels":{"level":"STDERR"}},)"
                       R"({"message":"b","timestamp":"t2","labels":{"level":"DEBUG"}}]})"),
            int(QueueStatus::State::inProgress), 0, "", 2, "");
        row("unknown status value", QByteArray(R"({"status":"PAUSED","queue_position":1})"), -1, 0, "", 0,
            "Invalid status value: PAUSED");
        row("status not a string", QByteArray(R"({"status":3})"), -1, 0, "", 0,
            "Missing or mistyped value for key: status");
        row("queued without position", QByteArray(R"({"status":"IN_QUEUE","response_url":"u"})"), -1, 0, "", 0,
            "Missing or mistyped value for key: queue_position");
        row("negative position", QByteArray(R"({"status":"IN_QUEUE","queue_position":-1,"response_url":"u"})"), -1, 0,
            "", 0, "Missing or mistyped value for key: queue_position");
        row("completed without address", QByteArray(R"({"status":"COMPLETED"})"), -1, 0, "", 0,
            "Missing or mistyped value for key: response_url");
        row("unknown log level",
            QByteArray(
                R"({"status":"IN_PROGRESS","logs":[{"message":"a","timestamp":"t","labels":{"level":"TRACE"}}]})"),
            -1, 0, "", 0, "Invalid log level: TRACE");
        row("an array", QByteArray("[1,2]"), -1, 0, "", 0, "The status answer is not an object");
    }

    void decodesStatus()
    {
        QFETCH(QByteArray, json);
        QFETCH(int, state);
        QFETCH(int, position);
        QFETCH(QString, responseUrl);
        QFETCH(int, logCount);
        QFETCH(QString, error);

        const auto decoded = QueueStatus::decode(json);
        if (state < 0) {
            QVERIFY(std::holds_alternative<DecodingError>(decoded));
            QCOMPARE(std::get<DecodingError>(decoded).message, error);
            return;
        }
        QVERIFY2(std::holds_alternative<QueueStatus>(decoded),
            qPrintable(std::get_if<DecodingError>(&decoded) ? std::get<DecodingError>(decoded).message : QString()));
        const QueueStatus &status = std::get<QueueStatus>(decoded);
        QCOMPARE(int(status.state()), state);
        QCOMPARE(status.position(), position);
        QCOMPARE(status.responseUrl(), responseUrl);
        QCOMPARE(status.logs().size(), logCount);
    }

    void readsLogEntries()
    {
        const auto decoded = QueueStatus::decode(
            R"({"status":"COMPLETED","response_url":"u","logs":[{"message":"step 1","timestamp":"2024-05-01T10:00:00Z","labels":{"level":"WARN"}}]})");
        QVERIFY(std::holds_alternative<QueueStatus>(decoded));
        const QList<RequestLog> logs = std::get<QueueStatus>(decoded).logs();
        QCOMPARE(logs.size(), 1);
        QCOMPARE(logs.first().message, "step 1");
        QCOMPARE(logs.first().timestamp, "2024-05-01T10:00:00Z");
        QCOMPARE(logs.first().labels.level, RequestLog::Level::warn);
        QCOMPARE(RequestLog::levelName(logs.first().labels.level), "WARN");
    }

    // Whatever arrives, the decoder answers with a status or an error and never crashes.
    void decodesArbitraryBytes_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("binary") << QByteArray::fromHex("00fffe7b22737461747573");
        QTest::newRow("truncated") << QByteArray("{\"status\":\"IN_QUEUE\",\"queue_pos");
        QTest::newRow("deep nesting") << QByteArray(2000, '[');
        QTest::newRow("logs not a list") << QByteArray(R"({"status":"IN_PROGRESS","logs":{"a":1}})");
        QTest::newRow("log entry not an object") << QByteArray(R"({"status":"IN_PROGRESS","logs":[5]})");
    }

    void decodesArbitraryBytes()
    {
        QFETCH(QByteArray, bytes);
        const auto decoded = QueueStatus::decode(bytes);
        QVERIFY(std::holds_alternative<DecodingError>(decoded));
        QVERIFY(!std::get<DecodingError>(decoded).message.isEmpty());
    }

    void mapsJsonOneToOne_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<Payload::Kind>("kind");
        const auto row = [](const char *name, const QByteArray &json, const Payload::Kind &kind) {
            QTest::newRow(name) << json << kind;
        };
        row("string", QByteArray(R"("text")"), Payload::Kind::string);
        row("integer", QByteArray("42"), Payload::Kind::integer);
        row("double", QByteArray("1.5"), Payload::Kind::number);
        row("boolean", QByteArray("false"), Payload::Kind::boolean);
        row("null", QByteArray("null"), Payload::Kind::nilValue);
        row("array", QByteArray(R"([1,"a",null,[true]])"), Payload::Kind::array);
        row("object", QByteArray("{\"images\":[{\"url\":\"https://x/y.png\",\"width\":1024}],\"seed\":3.25}"),
            Payload::Kind::dict);
    }

    void mapsJsonOneToOne()
    {
        QFETCH(QByteArray, json);
        QFETCH(Payload::Kind, kind);
        const std::optional<Payload> payload = Payload::fromJsonBytes(json);
        QVERIFY(payload);
        QCOMPARE(payload->kind(), kind);
        QCOMPARE(payload->toJsonBytes(), json);
        QCOMPARE(Payload::fromJsonBytes(payload->toJsonBytes()), payload);
    }

    void rejectsTextThatIsNotJson_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("word") << QByteArray("hello");
        QTest::newRow("broken object") << QByteArray(R"({"a":)");
    }

    void rejectsTextThatIsNotJson()
    {
        QFETCH(QByteArray, bytes);
        QVERIFY(!Payload::fromJsonBytes(bytes));
    }

    void writesDatesAndBytesAsText()
    {
        const Payload input(Payload::Dict {
            { QStringLiteral("when"), QDateTime(QDate(2024, 5, 1), QTime(10, 30, 0, 250), Qt::UTC) },
            { QStringLiteral("file"), QByteArray("abc") },
        });
        QCOMPARE(input.toJsonBytes(),
            QByteArray(R"({"file":"data:application/octet-stream;base64,YWJj","when":"2024-05-01T10:30:00.250Z"})"));
    }

    void normalisesApplicationIds_data()
    {
        QTest::addColumn<QString>("id");
        QTest::addColumn<QString>("normalised"); // empty: refused
        const auto row = [](const char *name, const QString &id, const QString &normalised) {
            QTest::newRow(name) << id << normalised;
        };
        row("owner and name", "fal-ai/flux-pro", "fal-ai/flux-pro");
        row("with a sub-path", "fal-ai/flux/schnell", "fal-ai/flux/schnell");
        row("numeric owner", "12345-my-app", "12345/my-app");
        row("not in the catalogue", "someone/new-model", "someone/new-model");
        row("empty", "", "");
        row("empty segment", "fal-ai//flux", "");
        row("leading slash", "/fal-ai/flux", "");
        row("dot segment", "fal-ai/../admin", "");
        row("query", "fal-ai/flux?x=1", "");
    }

    void normalisesApplicationIds()
    {
        QFETCH(QString, id);
        QFETCH(QString, normalised);
        const auto result = RequestSender::normaliseAppId(id);
        if (normalised.isEmpty()) {
            QVERIFY(std::holds_alternative<FalError>(result));
            QCOMPARE(std::get<FalError>(result).kind(), FalError::Kind::invalidAppId);
            QCOMPARE(std::get<FalError>(result).id(), id);
        } else {
            QCOMPARE(std::get<QString>(result), normalised);
        }
    }

    void sendsTheFourHeadersInOrder_data()
    {
        QTest::addColumn<int>("source");
        QTest::addColumn<QByteArray>("authorization");
        const auto row = [](const char *name, const int &source, const QByteArray &authorization) {
            QTest::newRow(name) << source << authorization;
        };
        row("key pair", 0, QByteArray("Key id:secret"));
        row("id and secret", 1, QByteArray("Key id2:secret2"));
        row("custom", 2, QByteArray("Key computed"));
        row("environment", 3, QByteArray("Key env-key"));
    }

    void sendsTheFourHeadersInOrder()
    {
        QFETCH(int, source);
        QFETCH(QByteArray, authorization);
        qputenv("FAL_KEY", "env-key");
        const ClientCredentials credentials[] = { ClientCredentials::keyPair(QStringLiteral("id:secret")),
            ClientCredentials::key(QStringLiteral("id2"), QStringLiteral("secret2")),
            ClientCredentials::custom([] { return QStringLiteral("computed"); }), ClientCredentials::fromEnv() };
        const RequestSender sender(nullptr, ClientConfig { credentials[source], std::nullopt });
        const auto built = sender.build(QUrl(QStringLiteral("https://queue.fal.run/fal-ai/flux")), HttpMethod::post,
            Payload(Payload::Dict { { QStringLiteral("prompt"), "a cat" } }));
        qunsetenv("FAL_KEY");
        QVERIFY(std::holds_alternative<HttpRequest>(built));
        const HttpRequest &request = std::get<HttpRequest>(built);

        QCOMPARE(request.headers.size(), 4);
        QCOMPARE(request.headers.at(0), std::make_pair(QByteArray("accept"), QByteArray("application/json")));
        QCOMPARE(request.headers.at(1), std::make_pair(QByteArray("content-type"), QByteArray("application/json")));
        QCOMPARE(request.headers.at(2).first, "user-agent");
        QCOMPARE(request.headers.at(3), std::make_pair(QByteArray("authorization"), authorization));

        const QByteArray userAgent = request.headers.at(2).second;
        QVERIFY2(userAgent.startsWith("zentrik-fal-client/0.1.0 - "), userAgent.constData());
        QVERIFY2(userAgent.endsWith(QSysInfo::prettyProductName().toLatin1()), userAgent.constData());

        QCOMPARE(request.method, "POST");
        QCOMPARE(request.timeout, std::chrono::milliseconds(60000));
        QCOMPARE(request.body, R"({"prompt":"a cat"})");
    }

    void readsCredentialPartsFromTheEnvironment()
    {
        qunsetenv("FAL_KEY");
        qputenv("FAL_KEY_ID", "the-id");
        qputenv("FAL_KEY_SECRET", "the-secret");
        QCOMPARE(ClientCredentials::fromEnv().credential(), "the-id:the-secret");
        qunsetenv("FAL_KEY_SECRET");
        QCOMPARE(ClientCredentials::fromEnv().credential(), "");
        qunsetenv("FAL_KEY_ID");
    }

    void putsGetInputIntoTheQuery_data()
    {
        QTest::addColumn<int>("method");
        QTest::addColumn<QString>("query");
        QTest::addColumn<QByteArray>("body");
        QTest::newRow("GET") << int(HttpMethod::get) << "flag=true&logs=1&name=a b&nested={\"k\":[1]}" << QByteArray();
        QTest::newRow("PUT") << int(HttpMethod::put) << ""
                             << QByteArray(R"({"flag":true,"logs":1,"name":"a b","nested":{"k":[1]}})");
        QTest::newRow("DELETE") << int(HttpMethod::delete_) << ""
                                << QByteArray(R"({"flag":true,"logs":1,"name":"a b","nested":{"k":[1]}})");
    }

    void putsGetInputIntoTheQuery()
    {
        QFETCH(int, method);
        QFETCH(QString, query);
        QFETCH(QByteArray, body);
        const RequestSender sender(nullptr, ClientConfig { ClientCredentials::keyPair(QStringLiteral("k")), {} });
        const Payload input(Payload::Dict {
            { QStringLiteral("logs"), 1 },
            { QStringLiteral("name"), "a b" },
            { QStringLiteral("flag"), true },
            { QStringLiteral("nested"), Payload::Dict { { QStringLiteral("k"), Payload::Array { Payload(1) } } } },
        });
        const QUrl target(QStringLiteral("https://queue.fal.run/fal-ai/flux/requests/r1/status"));
        const auto built = sender.build(target, HttpMethod(method), input);
        const HttpRequest &request = std::get<HttpRequest>(built);
        QCOMPARE(request.method, wireName(HttpMethod(method)));
        QCOMPARE(request.url.path(), target.path());
        QCOMPARE(QUrlQuery(request.url).toString(QUrl::FullyDecoded), query);
        QCOMPARE(request.body, body);
    }

    void sendsThroughTheProxy()
    {
        ClientConfig config { ClientCredentials::keyPair(QStringLiteral("k")),
            QStringLiteral("https://proxy.example/fal") };
        const RequestSender sender(nullptr, config);
        const auto built = sender.build(QUrl(QStringLiteral("https://queue.fal.run/fal-ai/flux/requests/r1")),
            HttpMethod::get, Payload(Payload::Dict { { QStringLiteral("logs"), 0 } }));
        const HttpRequest &request = std::get<HttpRequest>(built);
        QCOMPARE(request.url, QUrl(QStringLiteral("https://proxy.example/fal")));
        QCOMPARE(request.header("x-fal-target-url"), "https://queue.fal.run/fal-ai/flux/requests/r1?logs=0");
        QCOMPARE(request.header("authorization"), "Key k");

        config.requestProxy = QStringLiteral("not an address");
        const auto refused = RequestSender(nullptr, config)
                                 .build(QUrl(QStringLiteral("https://queue.fal.run/x/y")), HttpMethod::post, Payload());
        QVERIFY(std::holds_alternative<FalError>(refused));
        QCOMPARE(std::get<FalError>(refused).kind(), FalError::Kind::invalidUrl);
        QCOMPARE(std::get<FalError>(refused).url(), "not an address");
    }

    void readsAnswers_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<int>("errorKind"); // -1: success
        QTest::addColumn<QString>("message");
        const auto row = [](const char *name, const int &status, const QByteArray &body, const int &errorKind,
                             const QString &message) { QTest::newRow(name) << status << body << errorKind << message; };
        row("success", 200, QByteArray(R"({"request_id":"r"})"), -1, "");
        row("success, not JSON", 200, QByteArray("<html/>"), int(FalError::Kind::invalidResultFormat), "");
        row("401 with detail", 401, QByteArray(R"({"detail":"Invalid key"})"), int(FalError::Kind::unauthorized),
            "Invalid key");
        row("403 plain text", 403, QByteArray("Forbidden"), int(FalError::Kind::unauthorized), "Forbidden");
        row("422 validation list", 422, QByteArray(R"({"detail":[{"msg":"field required"},{"msg":"too long"}]})"),
            int(FalError::Kind::httpError), "field required; too long");
        row("500 with message", 500, QByteArray(R"({"message":"boom"})"), int(FalError::Kind::httpError), "boom");
        row("404 empty", 404, QByteArray(), int(FalError::Kind::httpError), "");
    }

    void readsAnswers()
    {
        QFETCH(int, status);
        QFETCH(QByteArray, body);
        QFETCH(int, errorKind);
        QFETCH(QString, message);
        HttpResponse response;
        response.status = status;
        response.body = body;
        const Result<Payload> result = RequestSender::read(response);
        if (errorKind < 0) {
            QVERIFY(std::holds_alternative<Payload>(result));
            QCOMPARE(std::get<Payload>(result), Payload::fromJsonBytes(body).value_or(Payload()));
            return;
        }
        const auto *error = std::get_if<FalError>(&std::get<ClientError>(result));
        QVERIFY(error);
        QCOMPARE(int(error->kind()), errorKind);
        QCOMPARE(error->message(), message);
        if (error->kind() == FalError::Kind::httpError) {
            QCOMPARE(error->status(), status);
            QCOMPARE(error->payload().has_value(), Payload::fromJsonBytes(body).has_value());
        }
    }
};

ZENTRIK_TEST(TestFalRecords)

#include "tst_falrecords.moc"
