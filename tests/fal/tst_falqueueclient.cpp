#include <QtTest>

#include <QJsonDocument>
#include <QUrlQuery>

#include "fal/falapi.h"
#include "support/environment.h"
#include "support/fakeprovider.h"
#include "support/testregistry.h"

using namespace zentrik;
using namespace zentrik::fal;
using namespace std::chrono_literals;
using test::ScriptedReply;

namespace {

const QByteArray appPath = "/fal-ai/flux/schnell";
const QByteArray statusPath = "/fal-ai/flux/schnell/requests/req-1/status";
const QByteArray resultPath = "/fal-ai/flux/schnell/requests/req-1";
const QByteArray submitted = R"({"request_id":"req-1"})";
const QByteArray result = "{\"images\":[{\"url\":\"https://cdn.example/a.png\",\"width\":1024}],\"seed\":7}";

QByteArray queued(int position)
{
    return QStringLiteral(R"({"status":"IN_QUEUE","queue_position":%1,"response_url":"u"})").arg(position).toUtf8();
}
const QByteArray running = R"({"status":"IN_PROGRESS"})";
const QByteArray completed = R"({"status":"COMPLETED","response_url":"u"})";

// A fake fal service, an HTTP client and a fal client pointed at it; the sleeper records the
// pauses it is asked for and wakes at once.
struct FalFixture
{
    FalFixture()
        : fake(std::make_unique<test::FakeProvider>())
    {
        environment.set("ZENTRIK_FAL_QUEUE_URL", fake->baseUrl().toString());
        environment.set("ZENTRIK_FAL_REST_URL", fake->baseUrl().toString());
        api.queue().setSleeper([this](std::chrono::nanoseconds duration, QObject *context, std::function<void()> wake) {
            sleeps.append(duration.count());
            QMetaObject::invokeMethod(context, std::move(wake), Qt::QueuedConnection);
        });
    }

    std::unique_ptr<test::FakeProvider> fake;
    test::ScopedEnvironment environment;
    HttpClient http;
    FalApi api { &http, ClientConfig { ClientCredentials::keyPair(QStringLiteral("key-id:key-secret")), {} } };
    QList<qint64> sleeps; // nanoseconds
};

template<typename T> struct Outcome
{
    int calls = 0;
    std::optional<Result<T>> result;

    auto handler()
    {
        return [this](const Result<T> &value) {
            ++calls;
            result = value;
        };
    }
    [[nodiscard]] const T *value() const { return result ? std::get_if<T>(&*result) : nullptr; }
    [[nodiscard]] const ClientError *error() const { return result ? std::get_if<ClientError>(&*result) : nullptr; }
    [[nodiscard]] QString describe() const { return error() ? fal::describe(*error()) : QStringLiteral("(no error)"); }
};

QStringList requestLines(const test::FakeProvider &fake)
{
    QStringList lines;
    for (const auto &request : fake.requests()) {
        lines.append(QString::fromUtf8(request.method + ' ' + request.target));
    }
    return lines;
}

} // namespace

// The queue client against a fake fal service: submission, status, result, the polling
// loop with its pauses and time limit, and the storage upload.
class TestFalQueueClient : public QObject
{
    Q_OBJECT

    // Whether the handler was called exactly once: after the first call the event loop runs a
    // little longer, since a second call would be queued right behind it.
    template<typename T> [[nodiscard]] static bool once(const Outcome<T> &outcome)
    {
        if (QTest::qWaitFor([&outcome] { return outcome.calls > 0; }, 10000)) {
            QTest::qWait(20);
        }
        return outcome.calls == 1;
    }

private Q_SLOTS:
    void submitsTheInput()
    {
        FalFixture fixture;
        fixture.fake->on("POST", appPath, ScriptedReply::json(submitted));
        Outcome<QString> outcome;
        fixture.api.queue().submit(QStringLiteral("fal-ai/flux/schnell"),
            Payload(Payload::Dict { { QStringLiteral("prompt"), "a lighthouse" } }),
            QStringLiteral("https://hooks.example/done?x=1"), this, outcome.handler());
        QCOMPARE(outcome.calls, 0);
        QVERIFY(once(outcome));
        QVERIFY2(outcome.value(), qPrintable(outcome.describe()));
        QCOMPARE(*outcome.value(), "req-1");

        const auto request = fixture.fake->lastRequest();
        QCOMPARE(request.method, "POST");
        QCOMPARE(request.path, appPath);
        QCOMPARE(QUrlQuery(QUrl(QString::fromUtf8(request.target)))
                     .queryItemValue(QStringLiteral("fal_webhook"), QUrl::FullyDecoded),
            "https://hooks.example/done?x=1");
        QCOMPARE(request.json(), QJsonDocument::fromJson(R"({"prompt":"a lighthouse"})"));
        QCOMPARE(request.header("authorization"), "Key key-id:key-secret");
        QCOMPARE(request.header("accept"), "application/json");
        QCOMPARE(request.header("content-type"), "application/json");
        QVERIFY(request.header("user-agent").contains("0.1.0"));
    }

    void refusesAnAnswerWithoutRequestId()
    {
        FalFixture fixture;
        fixture.fake->on("POST", appPath, ScriptedReply::json(R"({"status":"IN_QUEUE"})"));
        Outcome<QString> outcome;
        fixture.api.queue().submit(
            QStringLiteral("fal-ai/flux/schnell"), Payload(), std::nullopt, this, outcome.handler());
        QVERIFY(once(outcome));
        QVERIFY(outcome.error());
        QCOMPARE(std::get<FalError>(*outcome.error()).kind(), FalError::Kind::invalidResultFormat);
    }

    void asksForStatusWithOrWithoutLogs_data()
    {
        QTest::addColumn<bool>("includeLogs");
        QTest::addColumn<QByteArray>("query");
        QTest::newRow("with logs") << true << QByteArray("logs=1");
        QTest::newRow("without logs") << false << QByteArray("logs=0");
    }

    void asksForStatusWithOrWithoutLogs()
    {
        QFETCH(bool, includeLogs);
        QFETCH(QByteArray, query);
        FalFixture fixture;
        fixture.fake->on("GET", statusPath, ScriptedReply::json(running));
        Outcome<QueueStatus> outcome;
        fixture.api.queue().status(
            QStringLiteral("fal-ai/flux/schnell"), QStringLiteral("req-1"), includeLogs, this, outcome.handler());
        QVERIFY(once(outcome));
        QVERIFY2(outcome.value(), qPrintable(outcome.describe()));
        QCOMPARE(outcome.value()->state(), QueueStatus::State::inProgress);
        QVERIFY(outcome.value()->logs().isEmpty());
        QCOMPARE(fixture.fake->lastRequest().target, statusPath + '?' + query);
        QCOMPARE(fixture.fake->lastRequest().method, "GET");
        QVERIFY(fixture.fake->lastRequest().body.isEmpty());
    }

    void pollsUntilCompleted()
    {
        FalFixture fixture;
        fixture.fake->on("POST", appPath, ScriptedReply::json(submitted));
        for (const QByteArray &status : { queued(2), queued(0), running, completed }) {
            fixture.fake->enqueue("GET", statusPath, ScriptedReply::json(status));
        }
        fixture.fake->on("GET", resultPath, ScriptedReply::json(result));

        QList<QueueStatus> updates;
        QueueClient::SubscribeOptions options;
        options.pollInterval = 500ms;
        options.onQueueUpdate = [&updates](const QueueStatus &status) { updates.append(status); };
        Outcome<Payload> outcome;
        fixture.api.queue().subscribe(QStringLiteral("fal-ai/flux/schnell"),
            Payload(Payload::Dict { { QStringLiteral("prompt"), "p" } }), options, this, outcome.handler());
        QVERIFY(once(outcome));

        QVERIFY2(outcome.value(), qPrintable(outcome.describe()));
        QCOMPARE(*outcome.value(), *Payload::fromJsonBytes(result));
        QCOMPARE(requestLines(*fixture.fake),
            QStringList({ "POST " + appPath, "GET " + statusPath + "?logs=0", "GET " + statusPath + "?logs=0",
                "GET " + statusPath + "?logs=0", "GET " + statusPath + "?logs=0", "GET " + resultPath }));
        // Position 0 is still a place in the queue: the loop goes on after it.
        QCOMPARE(updates.size(), 4);
        QCOMPARE(updates.at(0), QueueStatus::inQueue(2, QStringLiteral("u")));
        QCOMPARE(updates.at(1), QueueStatus::inQueue(0, QStringLiteral("u")));
        QCOMPARE(updates.at(2).state(), QueueStatus::State::inProgress);
        QCOMPARE(updates.at(3).state(), QueueStatus::State::completed);
        // One pause after each status that was not the last.
        QCOMPARE(fixture.sleeps, QList<qint64>(3, 500'000'000));
    }

    void stopsAtTheTimeLimit()
    {
        FalFixture fixture;
        fixture.fake->on("POST", appPath, ScriptedReply::json(submitted));
        fixture.fake->on("GET", statusPath, ScriptedReply::json(queued(3)));
        QueueClient::SubscribeOptions options;
        options.pollInterval = 500ms;
        options.timeout = 1ns;
        Outcome<Payload> outcome;
        fixture.api.queue().subscribe(
            QStringLiteral("fal-ai/flux/schnell"), Payload(), options, this, outcome.handler());
        QVERIFY(once(outcome));
        QVERIFY(outcome.error());
        QCOMPARE(std::get<FalError>(*outcome.error()).kind(), FalError::Kind::queueTimeout);
        // The limit is checked before sleeping: no pause, no further question, no result.
        QVERIFY(fixture.sleeps.isEmpty());
        QCOMPARE(requestLines(*fixture.fake), QStringList({ "POST " + appPath, "GET " + statusPath + "?logs=0" }));
    }

    // The real timer: the pauses are really waited, the event loop keeps running meanwhile,
    // and the limit ends the loop.
    void waitsOnTheEventLoopUntilTheLimit()
    {
        FalFixture fixture;
        fixture.api.queue().setSleeper(timerSleeper());
        fixture.fake->on("POST", appPath, ScriptedReply::json(submitted));
        fixture.fake->on("GET", statusPath, ScriptedReply::json(queued(1)));
        int ticks = 0;
        QTimer ticker;
        connect(&ticker, &QTimer::timeout, this, [&ticks] { ++ticks; });
        ticker.start(10);

        QueueClient::SubscribeOptions options;
        options.pollInterval = 60ms;
        options.timeout = 250ms;
        Outcome<Payload> outcome;
        QElapsedTimer clock;
        clock.start();
        fixture.api.queue().subscribe(
            QStringLiteral("fal-ai/flux/schnell"), Payload(), options, this, outcome.handler());
        QVERIFY(once(outcome));
        QVERIFY(outcome.error());
        QCOMPARE(std::get<FalError>(*outcome.error()).kind(), FalError::Kind::queueTimeout);
        QVERIFY(clock.elapsed() >= 250);
        QVERIFY2(ticks >= 10, qPrintable(QString::number(ticks)));

        const auto requests = fixture.fake->requests();
        QVERIFY(requests.size() >= 4); // the submission and at least three questions
        for (qsizetype i = 2; i < requests.size(); ++i) {
            QVERIFY(requests.at(i).arrivedAt - requests.at(i - 1).arrivedAt >= 60ms);
        }
    }

    void passesFailuresOnAsTheyStand_data()
    {
        QTest::addColumn<QByteArray>("submitReply");
        QTest::addColumn<int>("submitStatus");
        QTest::addColumn<QByteArray>("statusReply");
        QTest::addColumn<QString>("description");
        QTest::newRow("refused key") << QByteArray(R"({"detail":"Invalid authentication"})") << 401 << QByteArray()
                                     << "The fal key was refused: Invalid authentication";
        QTest::newRow("server error") << QByteArray(R"({"detail":"Internal error"})") << 500 << QByteArray()
                                      << "HTTP 500: Internal error";
        QTest::newRow("status not JSON") << submitted << 200 << QByteArray("[")
                                         << "The fal result has an unexpected format.";
    }

    void passesFailuresOnAsTheyStand()
    {
        QFETCH(QByteArray, submitReply);
        QFETCH(int, submitStatus);
        QFETCH(QByteArray, statusReply);
        QFETCH(QString, description);
        FalFixture fixture;
        fixture.fake->on("POST", appPath, ScriptedReply::json(submitReply, submitStatus));
        fixture.fake->on("GET", statusPath, ScriptedReply::json(statusReply));
        Outcome<Payload> outcome;
        fixture.api.queue().subscribe(QStringLiteral("fal-ai/flux/schnell"), Payload(),
            QueueClient::SubscribeOptions {}, this, outcome.handler());
        QVERIFY(once(outcome));
        QVERIFY(outcome.error());
        QCOMPARE(outcome.describe(), description);
        QVERIFY(!fixture.fake->requests().isEmpty());
        QVERIFY(fixture.fake->lastRequest().path != resultPath);
    }

    void refusesABadApplicationIdWithoutSending()
    {
        FalFixture fixture;
        Outcome<Payload> outcome;
        fixture.api.queue().subscribe(
            QStringLiteral("fal-ai/../x"), Payload(), QueueClient::SubscribeOptions {}, this, outcome.handler());
        QCOMPARE(outcome.calls, 0);
        QVERIFY(once(outcome));
        QVERIFY(outcome.error());
        QCOMPARE(std::get<FalError>(*outcome.error()).kind(), FalError::Kind::invalidAppId);
        QCOMPARE(fixture.fake->requestCount(), 0);
    }

    void reportsATransportFailure()
    {
        FalFixture fixture;
        fixture.fake->on("POST", appPath, ScriptedReply::truncated(submitted, 5));
        Outcome<QString> outcome;
        fixture.api.queue().submit(
            QStringLiteral("fal-ai/flux/schnell"), Payload(), std::nullopt, this, outcome.handler());
        QVERIFY(once(outcome));
        QVERIFY(outcome.error());
        QVERIFY(std::holds_alternative<TransportError>(*outcome.error()));
    }

    // Once the caller is gone nothing is reported and nothing more is asked.
    void stopsWhenTheContextGoes()
    {
        FalFixture fixture;
        fixture.api.queue().setSleeper(timerSleeper());
        fixture.fake->on("POST", appPath, ScriptedReply::json(submitted));
        fixture.fake->on("GET", statusPath, ScriptedReply::json(queued(4)));
        auto context = std::make_unique<QObject>();
        int calls = 0;
        QueueClient::SubscribeOptions options;
        options.pollInterval = 20ms;
        fixture.api.queue().subscribe(QStringLiteral("fal-ai/flux/schnell"), Payload(), options, context.get(),
            [&calls](const Result<Payload> &) { ++calls; });
        QTRY_VERIFY(fixture.fake->requestCount() >= 3);
        context.reset();
        const int asked = fixture.fake->requestCount();
        QTRY_COMPARE(fixture.http.activeCallCount(), 0); // one may have been on its way
        QVERIFY(fixture.fake->requestCount() <= asked + 1);
        const int settled = fixture.fake->requestCount();
        QTest::qWait(100); // five polling intervals: a poll still going would have asked again
        QCOMPARE(fixture.fake->requestCount(), settled);
        QCOMPARE(calls, 0);
    }

    void sendsThroughTheProxyHeader()
    {
        FalFixture fixture;
        const QString proxy = fixture.fake->baseUrl().toString() + QStringLiteral("/api/fal/proxy");
        FalApi proxied(&fixture.http, ClientConfig { ClientCredentials::keyPair(QStringLiteral("k")), proxy });
        fixture.fake->on("POST", "/api/fal/proxy", ScriptedReply::json(submitted));
        Outcome<QString> outcome;
        proxied.queue().submit(QStringLiteral("fal-ai/flux-pro"),
            Payload(Payload::Dict { { QStringLiteral("prompt"), "p" } }), std::nullopt, this, outcome.handler());
        QVERIFY(once(outcome));
        QVERIFY2(outcome.value(), qPrintable(outcome.describe()));
        const auto request = fixture.fake->lastRequest();
        QCOMPARE(request.path, "/api/fal/proxy");
        QCOMPARE(request.header("x-fal-target-url"), fixture.fake->baseUrl().toEncoded() + "/fal-ai/flux-pro");
        QCOMPARE(request.header("authorization"), "Key k");
        QCOMPARE(request.json(), QJsonDocument::fromJson(R"({"prompt":"p"})"));
    }

    void uploadsToStorage()
    {
        FalFixture fixture;
        const QByteArray uploadUrl = fixture.fake->baseUrl().toEncoded() + "/signed/upload-1?sig=abc";
        fixture.fake->on("POST", "/storage/upload/initiate",
            ScriptedReply::json(
                "{\"upload_url\":\"" + uploadUrl + "\",\"file_url\":\"https://files.example/f1.png\"}"));
        fixture.fake->on("PUT", "/signed/upload-1", ScriptedReply::json(QByteArray(), 200));
        const QByteArray bytes("\x89PNG\r\n\x1a\nrest", 12);
        Outcome<QString> outcome;
        fixture.api.storage().upload(
            bytes, QStringLiteral("image/png"), QStringLiteral("f1.png"), this, outcome.handler());
        QVERIFY(once(outcome));
        QVERIFY2(outcome.value(), qPrintable(outcome.describe()));
        QCOMPARE(*outcome.value(), "https://files.example/f1.png");

        const auto requests = fixture.fake->requests();
        QCOMPARE(requests.size(), 2);
        QCOMPARE(
            requests.at(0).json(), QJsonDocument::fromJson(R"({"content_type":"image/png","file_name":"f1.png"})"));
        QCOMPARE(requests.at(0).header("authorization"), "Key key-id:key-secret");
        QCOMPARE(requests.at(1).method, "PUT");
        QCOMPARE(requests.at(1).target, "/signed/upload-1?sig=abc");
        QCOMPARE(requests.at(1).body, bytes);
        QCOMPARE(requests.at(1).header("content-type"), "image/png");
        // The signed address is somebody else's: it never sees the key.
        QVERIFY(!requests.at(1).hasHeader("authorization"));
    }

    void reportsAFailedUpload_data()
    {
        QTest::addColumn<QByteArray>("initiateReply");
        QTest::addColumn<int>("putStatus");
        QTest::addColumn<int>("kind");
        QTest::newRow("no upload address")
            << QByteArray(R"({"file_url":"f"})") << 200 << int(FalError::Kind::invalidResultFormat);
        QTest::newRow("upload refused") << QByteArray() << 500 << int(FalError::Kind::httpError);
    }

    void reportsAFailedUpload()
    {
        QFETCH(QByteArray, initiateReply);
        QFETCH(int, putStatus);
        QFETCH(int, kind);
        FalFixture fixture;
        if (initiateReply.isEmpty()) {
            initiateReply = "{\"upload_url\":\"" + fixture.fake->baseUrl().toEncoded() + "/up\",\"file_url\":\"f\"}";
        }
        fixture.fake->on("POST", "/storage/upload/initiate", ScriptedReply::json(initiateReply));
        fixture.fake->on("PUT", "/up", ScriptedReply::json(R"({"detail":"no"})", putStatus));
        Outcome<QString> outcome;
        fixture.api.storage().upload("x", {}, QStringLiteral("x.bin"), this, outcome.handler());
        QVERIFY(once(outcome));
        QVERIFY(outcome.error());
        QCOMPARE(int(std::get<FalError>(*outcome.error()).kind()), kind);
        QCOMPARE(StorageClient::inlineAddress("x"), "data:application/octet-stream;base64,eA==");
    }
};

ZENTRIK_TEST(TestFalQueueClient)

#include "tst_falqueueclient.moc"
