#include <QtTest>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTcpServer>

#include "buildconfig.h"
#include "support/completion.h"
#include "support/providerfixture.h"
#include "support/testregistry.h"

using namespace zentrik;
using test::ProviderFixture;
using namespace std::chrono_literals;
using test::ScriptedReply;

namespace {

const QByteArray openAIReply
    = R"({"id":"c","object":"chat.completion","created":1,"model":"m","choices":[{"index":0,"message":{"role":"assistant","content":"Reply text"},"finish_reason":"stop"}]})";
const QByteArray anthropicReply
    = R"({"id":"msg","type":"message","role":"assistant","content":[{"type":"text","text":"Reply "},{"type":"text","text":"text"}],"stop_reason":"end_turn"})";

QString builtInOpenRouterKey()
{
    return QString::fromUtf8(build::openRouterKey);
}

QString messageOf(const TextResult &result)
{
    if (const auto *error = std::get_if<APIError>(&result)) {
        return error->message();
    }
    return QStringLiteral("reply: ") + std::get<QString>(result);
}

} // namespace

// The one-shot text operation: the three provider requests and how their answers are read.
class TestTextGeneration : public QObject
{
    Q_OBJECT

    // The reply's text or error message, once the operation has completed exactly once.
    QString generate(ProviderFixture &fixture, const QString &prompt = QStringLiteral("Prompt"))
    {
        test::Completion<TextResult> done;
        fixture.manager->generateText(prompt, this, done.callback());
        done.started();
        return done.waitOnce() ? messageOf(done.result()) : done.fault();
    }

private Q_SLOTS:
    void sendsEachProviderItsRequest_data()
    {
        QTest::addColumn<QString>("model");
        QTest::addColumn<bool>("userKeys");
        QTest::addColumn<QByteArray>("path");
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QList<QByteArrayList>>("headers"); // name, value ("" = must be absent)

        QTest::newRow("OpenAI")
            << "gpt-4o-mini" << true << QByteArray("/v1/chat/completions") << openAIReply
            << QByteArray(
                   R"({"model":"gpt-4o-mini","messages":[{"role":"system","content":"You are a helpful assistant."},{"role":"user","content":"Prompt"}]})")
            << QList<QByteArrayList> { { "Content-Type", "application/json" }, { "Authorization", "Bearer sk-openai" },
                   { "x-api-key", "" } };
        QTest::newRow("Anthropic")
            << "claude-3-haiku-20240307" << true << QByteArray("/v1/messages") << anthropicReply
            << QByteArray(
                   R"({"model":"claude-3-haiku-20240307","max_tokens":1024,"messages":[{"role":"user","content":"Prompt"}]})")
            << QList<QByteArrayList> { { "Content-Type", "application/json" }, { "x-api-key", "sk-ant" },
                   { "anthropic-version", "2023-06-01" }, { "Authorization", "" } };
        if (!builtInOpenRouterKey().isEmpty()) {
            QTest::newRow("OpenRouter with the built-in key")
                << "google/gemma-2-9b-it:free" << false << QByteArray("/api/v1/chat/completions") << openAIReply
                << QByteArray(
                       R"({"model":"google/gemma-2-9b-it:free","messages":[{"role":"user","content":"Prompt"}]})")
                << QList<QByteArrayList> { { "Content-Type", "application/json" },
                       { "Authorization", "Bearer " + builtInOpenRouterKey().toUtf8() } };
        }
    }

    void sendsEachProviderItsRequest()
    {
        QFETCH(QString, model);
        QFETCH(bool, userKeys);
        QFETCH(QByteArray, path);
        QFETCH(QByteArray, reply);
        QFETCH(QByteArray, body);
        QFETCH(QList<QByteArrayList>, headers);

        ProviderFixture fixture;
        fixture.use(
            model, userKeys ? QStringLiteral("sk-openai") : QString(), userKeys ? QStringLiteral("sk-ant") : QString());
        fixture.fake->on("POST", path, ScriptedReply::json(reply));
        QCOMPARE(generate(fixture), "reply: Reply text");

        QCOMPARE(fixture.fake->requestCount(), 1);
        const auto request = fixture.fake->lastRequest();
        QCOMPARE(request.method, "POST");
        QCOMPARE(request.path, path);
        QCOMPARE(request.json(), QJsonDocument::fromJson(body));
        for (const QByteArrayList &header : headers) {
            if (header.at(1).isEmpty()) {
                QVERIFY2(!request.hasHeader(header.at(0)), header.at(0).constData());
            } else {
                QCOMPARE(request.header(header.at(0)), header.at(1));
            }
        }
    }

    void freeModelsWithoutABuiltInKeyFailAtOnce()
    {
        if (!builtInOpenRouterKey().isEmpty()) {
            QSKIP("This build carries a key for the free models; the request test covers them.");
        }
        ProviderFixture fixture;
        fixture.use(QStringLiteral("mistralai/mistral-7b-instruct:free"));
        QTest::ignoreMessage(QtInfoMsg, "This build carries no key for the free models (ZENTRIK_OPENROUTER_KEY)");
        QCOMPARE(generate(fixture),
            "The free models need a key built into the program, and this build carries none. "
            "Please choose another model in Settings.");
        QCOMPARE(fixture.fake->requestCount(), 0);
    }

    // Whole or streamed, a request the selection cannot serve is refused before anything is
    // sent, and the caller hears of it only after its call has returned.
    void refusesBeforeSending_data()
    {
        QTest::addColumn<bool>("streamed");
        QTest::addColumn<QString>("model");
        QTest::addColumn<QString>("openAIKey");
        QTest::addColumn<QString>("claudeKey");
        QTest::addColumn<QString>("message");
        const QString unsupported = "Unsupported model selected. Please choose a valid model in Settings.";
        const QString missing = "API key is missing. Please add it in Settings.";
        for (const bool streamed : { false, true }) {
            const char *how = streamed ? "streamed" : "whole";
            QTest::addRow("%s, unknown id", how) << streamed << "gpt-4o"
                                                 << "k"
                                                 << "k" << unsupported;
            QTest::addRow("%s, empty id", how) << streamed << ""
                                               << "k"
                                               << "k" << unsupported;
            QTest::addRow("%s, OpenAI without key", how) << streamed << "gpt-4-turbo"
                                                         << ""
                                                         << "k" << missing;
            QTest::addRow("%s, Anthropic without key", how) << streamed << "claude-3-opus-20240229"
                                                            << "k"
                                                            << "" << missing;
        }
    }

    void refusesBeforeSending()
    {
        QFETCH(bool, streamed);
        QFETCH(QString, model);
        QFETCH(QString, openAIKey);
        QFETCH(QString, claudeKey);
        QFETCH(QString, message);
        ProviderFixture fixture;
        fixture.use(model, openAIKey, claudeKey);
        if (streamed) {
            test::Completion<std::optional<APIError>> done;
            const auto id = fixture.manager->streamText(
                QStringLiteral("Prompt"), this, [](const QString &) {}, done.callback());
            done.started();
            QVERIFY(!fixture.manager->isStreamActive(id));
            QVERIFY2(done.waitOnce(), qPrintable(done.fault()));
            QVERIFY(done.result().has_value());
            QCOMPARE(done.result()->message(), message);
        } else {
            QCOMPARE(generate(fixture), message);
        }
        QCOMPARE(fixture.fake->requestCount(), 0);
    }

    void readsAnswersInTheCommonOrder_data()
    {
        QTest::addColumn<QString>("model");
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("message");
        QTest::addColumn<QString>("log");
        const auto row = [](const char *name, const QString &model, const int &status, const QByteArray &body,
                             const QString &message,
                             const QString &log) { QTest::newRow(name) << model << status << body << message << log; };

        const QString invalid = "Invalid response received from the server.";
        row("empty choices", "gpt-4o-mini", 200, QByteArray(R"({"choices":[]})"), invalid, QString());
        row("null content", "gpt-3.5-turbo-1106", 200,
            QByteArray(R"({"choices":[{"message":{"role":"assistant","content":null}}]})"), invalid, QString());
        row("not JSON", "gpt-4o-mini", 200, QByteArray("<html>oops</html>"),
            "Failed to parse the server response: illegal value", QString());
        row("no body", "gpt-4o-mini", 200, QByteArray(), "No data received from the server.", QString());
        row("error body", "gpt-4o-mini", 401,
            QByteArray(R"({"error":{"message":"Incorrect API key provided: sk-op***ai."}})"), invalid,
            "OpenAI answered HTTP 401: Incorrect API key provided: sk-op***ai.");
        row("Anthropic without text", "claude-instant", 200, QByteArray(R"({"content":[]})"), invalid,
            "API request failed: Invalid response received from the server.");
        row("Anthropic error body", "claude-3-5-sonnet-20240620", 529,
            QByteArray(R"({"type":"error","error":{"type":"overloaded_error","message":"Overloaded"}})"), invalid,
            "Anthropic answered HTTP 529: Overloaded|API request failed: Invalid response received from the server.");
        row("Anthropic not JSON", "claude-instant", 200, QByteArray("x"),
            "Failed to parse the server response: illegal value",
            "API request failed: Failed to parse the server response: illegal value");
    }

    void readsAnswersInTheCommonOrder()
    {
        QFETCH(QString, model);
        QFETCH(int, status);
        QFETCH(QByteArray, body);
        QFETCH(QString, message);
        QFETCH(QString, log);
        ProviderFixture fixture;
        fixture.use(model);
        const QByteArray path = model.startsWith("claude") ? "/v1/messages" : "/v1/chat/completions";
        fixture.fake->on("POST", path, ScriptedReply::json(body, status));
        for (const QString &line : log.split('|', Qt::SkipEmptyParts)) {
            QTest::ignoreMessage(QtInfoMsg, line.toUtf8().constData());
        }
        QCOMPARE(generate(fixture), message);
    }

    void transportFailuresHaveTheirMessages_data()
    {
        QTest::addColumn<QString>("scenario");
        QTest::addColumn<QString>("message");
        const auto row = [](const char *name, const QString &scenario, const QString &message) {
            QTest::newRow(name) << scenario << message;
        };
        row("never answers", "silent", "The request timed out. Please try again.");
        row("closes mid-body", "truncated",
            "The network connection was lost. Please check your internet connection and try again.");
        row("unknown host", "invalid",
            "Unable to find the server. Please check your internet connection or try again later.");
        row("refused", "refused", "A network error occurred: Connection refused");
    }

    void transportFailuresHaveTheirMessages()
    {
        QFETCH(QString, scenario);
        QFETCH(QString, message);
        ProviderFixture fixture;
        fixture.use(QStringLiteral("gpt-4o-mini"));
        fixture.manager->httpClient().setTimeout(300ms);
        if (scenario == "silent") {
            fixture.fake->on("POST", "/v1/chat/completions", ScriptedReply::noAnswer());
        } else if (scenario == "truncated") {
            fixture.fake->on("POST", "/v1/chat/completions", ScriptedReply::truncated(openAIReply, 20));
        } else if (scenario == "invalid") {
            qputenv("ZENTRIK_OPENAI_BASE_URL", "http://api.zentrik-test.invalid");
        } else {
            QTcpServer closed;
            QVERIFY(closed.listen(QHostAddress::LocalHost));
            const quint16 port = closed.serverPort();
            closed.close();
            qputenv("ZENTRIK_OPENAI_BASE_URL", QStringLiteral("http://127.0.0.1:%1").arg(port).toUtf8());
        }
        QCOMPARE(generate(fixture), message);
    }

    void destroyedCallerGetsNoCompletion()
    {
        ProviderFixture fixture;
        fixture.use(QStringLiteral("gpt-4o-mini"));
        ScriptedReply slow = ScriptedReply::json(openAIReply);
        slow.pieces.first().pauseBefore = 100ms;
        fixture.fake->on("POST", "/v1/chat/completions", slow);
        int calls = 0;
        auto caller = std::make_unique<QObject>();
        fixture.manager->generateText("p", caller.get(), [&calls](const TextResult &) { ++calls; });
        QTRY_COMPARE(fixture.fake->requestCount(), 1);
        caller.reset();
        // Once the client holds no call, nothing is left that could call back.
        QTRY_COMPARE(fixture.manager->httpClient().activeCallCount(), 0);
        QCOMPARE(calls, 0);
    }
};

ZENTRIK_TEST(TestTextGeneration)
#include "tst_textgeneration.moc"
