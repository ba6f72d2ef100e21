#include <QtTest>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "buildconfig.h"
#include "support/providerfixture.h"
#include "support/replies.h"
#include "support/testregistry.h"

using namespace zentrik;
using test::ProviderFixture;
using namespace std::chrono_literals;
using test::Clock;
using test::ScriptedReply;

using test::anthropicEvent;
using test::chunkLine;
using test::textDelta;

namespace {

struct Received
{
    QStringList pieces;
    QList<Clock::time_point> pieceTimes;
    int completions = 0;
    std::optional<APIError> error;
};

} // namespace

// The streaming text operation the tools use, routed by provider, through the fake.
class TestStreamText : public QObject
{
    Q_OBJECT

    APIManager::StreamId start(
        ProviderFixture &fixture, Received &received, const QString &prompt = QStringLiteral("Tell me"))
    {
        return fixture.manager->streamText(
            prompt, this,
            [&received](const QString &piece) {
                received.pieces.append(piece);
                received.pieceTimes.append(Clock::now());
            },
            [&received](const std::optional<APIError> &error) {
                ++received.completions;
                received.error = error;
            });
    }

    Received run(ProviderFixture &fixture, const QString &prompt = QStringLiteral("Tell me"))
    {
        Received received;
        start(fixture, received, prompt);
        if (QTest::qWaitFor([&received] { return received.completions > 0; }, 10000)) {
            QTest::qWait(20); // a second completion would be queued right behind the first
        }
        return received;
    }

private Q_SLOTS:
    void openAIModelsStreamFromOpenAI()
    {
        ProviderFixture fixture;
        fixture.use(QStringLiteral("gpt-4o-mini"));
        fixture.fake->on("POST", "/v1/chat/completions",
            ScriptedReply::sse(
                { ": OPENROUTER PROCESSING\n\n", chunkLine("Hello"), chunkLine(", world", "stop"), test::doneLine }));
        const Received received = run(fixture, QStringLiteral("Say hi"));
        QCOMPARE(received.completions, 1);
        QVERIFY(!received.error);
        QCOMPARE(received.pieces, (QStringList { "Hello", ", world" }));

        const auto request = fixture.fake->lastRequest();
        QCOMPARE(request.header("Authorization"), "Bearer sk-openai");
        const QJsonObject body = request.json().object();
        // Only what the streaming text operation sets: no generation options at all.
        QCOMPARE(body.keys(), (QStringList { "messages", "model", "stream", "stream_options" }));
        QCOMPARE(body.value("model"), "gpt-4o-mini");
        QCOMPARE(body.value("stream"), true);
        QCOMPARE(body.value("messages").toArray().size(), 1);
        const QJsonObject message = body.value("messages").toArray().first().toObject();
        QCOMPARE(message.value("role"), "user");
        QCOMPARE(message.value("content").toArray(),
            (QJsonArray { QJsonObject { { "type", "text" }, { "text", "Say hi" } } }));
    }

    void freeModelsStreamThroughTheChatClient()
    {
        ProviderFixture fixture;
        fixture.use(QStringLiteral("meta-llama/llama-3.1-8b-instruct:free"), QString(), QString());
        fixture.fake->on("POST", "/api/v1/chat/completions", ScriptedReply::sse({ chunkLine("free"), test::doneLine }));
        const QString builtIn = QString::fromUtf8(build::openRouterKey);
        if (builtIn.isEmpty()) {
            QTest::ignoreMessage(QtInfoMsg, "This build carries no key for the free models (ZENTRIK_OPENROUTER_KEY)");
        }
        const Received received = run(fixture);
        QCOMPARE(received.completions, 1);
        if (builtIn.isEmpty()) {
            QCOMPARE(received.error->message(),
                "The free models need a key built into the program, and this build carries none. "
                "Please choose another model in Settings.");
            QCOMPARE(fixture.fake->requestCount(), 0);
            return;
        }
        QVERIFY(!received.error);
        QCOMPARE(received.pieces, QStringList { "free" });
        QCOMPARE(fixture.fake->lastRequest().header("Authorization"), "Bearer " + builtIn.toUtf8());
    }

    void anthropicModelsStreamTheirMessages()
    {
        ProviderFixture fixture;
        fixture.use(QStringLiteral("claude-3-haiku-20240307"));
        fixture.fake->on("POST", "/v1/messages",
            ScriptedReply::sse({ anthropicEvent("message_start", { { "message", QJsonObject { { "id", "m" } } } }),
                anthropicEvent("ping") + textDelta("Bonjour"), textDelta(", \u00e7a va ?"),
                anthropicEvent("message_delta", { { "delta", QJsonObject { { "stop_reason", "end_turn" } } } })
                    + anthropicEvent("message_stop") }));
        const Received received = run(fixture, QStringLiteral("Salut"));
        QCOMPARE(received.completions, 1);
        QVERIFY(!received.error);
        QCOMPARE(received.pieces.join(QString()), QString::fromUtf8("Bonjour, \u00e7a va ?"));

        const auto request = fixture.fake->lastRequest();
        QCOMPARE(request.header("x-api-key"), "sk-ant");
        QCOMPARE(request.header("anthropic-version"), "2023-06-01");
        QVERIFY(!request.hasHeader("Authorization"));
        QCOMPARE(request.json().object(),
            (QJsonObject { { "model", "claude-3-haiku-20240307" }, { "max_tokens", 1024 },
                { "messages", QJsonArray { QJsonObject { { "role", "user" }, { "content", "Salut" } } } },
                { "stream", true } }));
    }

    void failuresKeepWhatWasDelivered_data()
    {
        QTest::addColumn<QString>("model");
        QTest::addColumn<QByteArray>("path");
        QTest::addColumn<int>("scenario");
        QTest::addColumn<QStringList>("pieces");
        QTest::addColumn<QString>("message");
        const QByteArray chat = "/v1/chat/completions";
        QTest::newRow("error object after two pieces") << "gpt-4o-mini" << chat << 0 << QStringList { "one", "two" }
                                                       << "A network error occurred: Rate limit exceeded";
        QTest::newRow("HTTP failure") << "gpt-4o-mini" << chat << 1 << QStringList()
                                      << "A network error occurred: HTTP 401: Incorrect API key provided";
        QTest::newRow("closed without end marker")
            << "gpt-4o-mini" << chat << 2 << QStringList { "one", "two" }
            << "The network connection was lost. Please check your internet connection and try again.";
        QTest::newRow("cut off")
            << "gpt-4o-mini" << chat << 3 << QStringList { "one", "two" }
            << "The network connection was lost. Please check your internet connection and try again.";
        QTest::newRow("unreadable chunk") << "gpt-4o-mini" << chat << 4 << QStringList { "one", "two" }
                                          << "Failed to parse the server response: The reply stream held a chunk that "
                                             "could not be read: unterminated array";
        QTest::newRow("Anthropic error event") << "claude-instant" << QByteArray("/v1/messages") << 5
                                               << QStringList { "one" } << "A network error occurred: Overloaded";
    }

    void failuresKeepWhatWasDelivered()
    {
        QFETCH(QString, model);
        QFETCH(QByteArray, path);
        QFETCH(int, scenario);
        QFETCH(QStringList, pieces);
        QFETCH(QString, message);
        ProviderFixture fixture;
        fixture.use(model);
        const QList<QByteArray> two { chunkLine("one"), chunkLine("two") };
        ScriptedReply reply = ScriptedReply::sse(two);
        switch (scenario) {
        case 0:
            reply = ScriptedReply::sse(two
                + QList<QByteArray> {
                    "data: {\"error\":{\"message\":\"Rate limit exceeded\",\"code\":429}}\n\n", test::doneLine });
            break;
        case 1:
            reply = ScriptedReply::json(QByteArray(R"({"error":{"message":"Incorrect API key provided"}})"), 401);
            break;
        case 3:
            reply.ending = ScriptedReply::Ending::CloseEarly;
            break;
        case 4:
            reply = ScriptedReply::sse(
                two + QList<QByteArray> { "data: {\"choices\":[\n\n", chunkLine("three"), test::doneLine });
            break;
        case 5:
            reply = ScriptedReply::sse({ textDelta("one"),
                anthropicEvent("error",
                    { { "error", QJsonObject { { "type", "overloaded_error" }, { "message", "Overloaded" } } } }),
                textDelta("never") });
            break;
        default:
            break;
        }
        fixture.fake->on("POST", path, reply);
        const Received received = run(fixture);
        QCOMPARE(received.completions, 1);
        QCOMPARE(received.pieces, pieces);
        QVERIFY(received.error.has_value());
        QCOMPARE(received.error->message(), message);
    }

    void failsAtOnceWithoutTheChatClient()
    {
        ProviderFixture fixture;
        // A manager of its own, made while the OpenRouter address cannot be formed.
        QTest::ignoreMessage(QtInfoMsg, "Error: Invalid OpenRouter URLs");
        fixture.redirect("ZENTRIK_OPENROUTER_BASE_URL", QStringLiteral("::not a url::"));
        QVERIFY(!fixture.manager->hasChatClient());
        fixture.use(QStringLiteral("google/gemma-2-9b-it:free"));
        const Received received = run(fixture);
        QCOMPARE(received.completions, 1);
        QVERIFY(received.error.has_value());
        QCOMPARE(received.error->message(), "A network error occurred: The chat client is not set up.");
        QCOMPARE(fixture.fake->requestCount(), 0);
    }

    void stopKeepsTheTextAndEndsQuietly()
    {
        ProviderFixture fixture;
        fixture.use(QStringLiteral("gpt-4o-mini"));
        fixture.fake->on("POST", "/v1/chat/completions",
            ScriptedReply::sse(
                { chunkLine("kept"), chunkLine("lost"), chunkLine("lost", "stop"), test::doneLine }, 150ms));
        Received received;
        const auto id = start(fixture, received);
        QTRY_COMPARE(received.pieces.size(), 1);
        fixture.manager->stopStream(id);
        QCOMPARE(received.completions, 1);
        QVERIFY(!received.error);
        QVERIFY(!fixture.manager->isStreamActive(id));
        fixture.manager->stopStream(id); // a second stop changes nothing
        // Once the client holds no call, nothing is left that could deliver more.
        QTRY_COMPARE(fixture.manager->httpClient().activeCallCount(), 0);
        QCOMPARE(received.pieces, QStringList { "kept" });
        QCOMPARE(received.completions, 1);
    }

    // Pieces reach the caller as they arrive: the first is delivered while the server still
    // holds back the second (compared with the times the server recorded, not with sleeps).
    void firstPieceArrivesBeforeTheSecondIsSent()
    {
        ProviderFixture fixture;
        fixture.use(QStringLiteral("gpt-4o-mini"));
        fixture.fake->on("POST", "/v1/chat/completions",
            ScriptedReply::sse({ chunkLine("first"), chunkLine("second", "stop"), test::doneLine }, 2000ms));
        const Received received = run(fixture);
        QCOMPARE(received.completions, 1);
        QVERIFY(!received.error);
        QCOMPARE(received.pieces, (QStringList { "first", "second" }));
        const auto sent = fixture.fake->lastRequest().piecesSentAt;
        QCOMPARE(sent.size(), 3);
        QVERIFY(received.pieceTimes.at(0) < sent.at(1));
        QVERIFY(received.pieceTimes.at(1) >= sent.at(1));
    }
};

ZENTRIK_TEST(TestStreamText)
#include "tst_streamtext.moc"
