#include <QtTest>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "chat/openaichatclient.h"
#include "support/fakeprovider.h"
#include "support/replies.h"
#include "support/testregistry.h"

using namespace zentrik;
using namespace std::chrono_literals;
using test::FakeProvider;
using test::ScriptedReply;

using test::chunkLine;

namespace {

struct StreamOutcome
{
    QStringList pieces;
    int finishedCalls = 0;
    std::optional<ChatError> error;
};

const QList<ChatMessage> hello { ChatMessage(ChatMessage::Role::user, QStringLiteral("Hello")) };

} // namespace

// The chat client end to end against the fake provider.
class TestOpenAIChatClient : public QObject
{
    Q_OBJECT

    std::unique_ptr<FakeProvider> m_fake;
    std::unique_ptr<HttpClient> m_http;

    OpenAIChatClient client(QMap<QString, QString> headers = {}) const
    {
        return OpenAIChatClient(m_http.get(), QStringLiteral("sk-test"),
            m_fake->baseUrl().resolved(QUrl("/api/v1/chat/completions")),
            m_fake->baseUrl().resolved(QUrl("/api/v1/models")), std::move(headers));
    }

    StreamOutcome runStream(const OpenAIChatClient &chat, const ChatOptions &options = {})
    {
        StreamOutcome outcome;
        OpenAIChatClient::StreamHandlers handlers;
        handlers.onChunk = [&outcome](const ChatCompletionChunk &chunk) {
            if (auto text = chunk.text(); text && !text->isEmpty()) {
                outcome.pieces.append(*text);
            }
        };
        handlers.onFinished = [&outcome](const std::optional<ChatError> &error) {
            ++outcome.finishedCalls;
            outcome.error = error;
        };
        chat.stream(QStringLiteral("google/gemma-2-9b-it:free"), hello, options, this, handlers);
        if (QTest::qWaitFor([&outcome] { return outcome.finishedCalls > 0; }, 10000)) {
            QTest::qWait(20); // a second call would be queued right behind the first
        }
        return outcome;
    }

    void streamReply(const ScriptedReply &reply) { m_fake->on("POST", "/api/v1/chat/completions", reply); }

private Q_SLOTS:
    void init()
    {
        m_fake = std::make_unique<FakeProvider>();
        m_http = std::make_unique<HttpClient>();
    }

    void cleanup()
    {
        m_http.reset();
        m_fake.reset();
    }

    void customHeadersComeAfterTheStandardOnes()
    {
        streamReply(ScriptedReply::sse({ "data: [DONE]\n\n" }));
        const StreamOutcome outcome = runStream(client({ { "HTTP-Referer", "https://zentrik.app" },
            { "X-Title", "Zentrik" }, { "Authorization", "Bearer override" } }));
        QCOMPARE(outcome.finishedCalls, 1);
        QVERIFY(!outcome.error);
        const auto request = m_fake->lastRequest();
        QCOMPARE(request.method, "POST");
        QCOMPARE(request.header("Content-Type"), "application/json");
        QCOMPARE(request.header("HTTP-Referer"), "https://zentrik.app");
        QCOMPARE(request.header("X-Title"), "Zentrik");
        // Added after the standard headers, a custom header of the same name wins.
        QCOMPARE(request.header("Authorization"), "Bearer override");
    }

    void optionsInTheBody_data()
    {
        QTest::addColumn<bool>("stream");
        QTest::addColumn<bool>("withOptions");
        QTest::newRow("send, no options") << false << false;
        QTest::newRow("stream, no options") << true << false;
        QTest::newRow("stream, options") << true << true;
    }

    void optionsInTheBody()
    {
        QFETCH(bool, stream);
        QFETCH(bool, withOptions);
        streamReply(stream ? ScriptedReply::sse({ "data: [DONE]\n\n" })
                           : ScriptedReply::json(QByteArray(R"({"id":"x","choices":[]})")));
        ChatOptions options;
        if (withOptions) {
            options.temperature = 0.2;
            options.maxCompletionTokens = 64;
        }
        const OpenAIChatClient chat = client();
        bool finished = false;
        if (stream) {
            finished = runStream(chat, options).finishedCalls == 1;
        } else {
            chat.send("m", hello, options, this,
                [&finished](const OpenAIChatClient::CompletionResult &) { finished = true; });
        }
        QTRY_VERIFY(finished);

        const QJsonObject body = m_fake->lastRequest().json().object();
        QCOMPARE(m_fake->lastRequest().header("Authorization"), "Bearer sk-test");
        QCOMPARE(body.value("stream").toBool(), stream);
        QCOMPARE(body.contains("stream_options"), stream);
        QStringList expectedKeys { "messages", "model", "stream" };
        if (stream) {
            expectedKeys.append("stream_options");
        }
        if (withOptions) {
            expectedKeys << "max_completion_tokens"
                         << "temperature";
            QCOMPARE(body.value("temperature").toDouble(), 0.2);
            QCOMPARE(body.value("max_completion_tokens").toInt(), 64);
        }
        expectedKeys.sort();
        QCOMPARE(body.keys(), expectedKeys);
        QCOMPARE(body.value("messages")
                     .toArray()
                     .first()
                     .toObject()
                     .value("content")
                     .toArray()
                     .first()
                     .toObject()
                     .value("text"),
            "Hello");
    }

    void sendResults_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("content");
        QTest::addColumn<QString>("failure");
        QTest::newRow("reply")
            << 200
            << QByteArray(
                   R"({"id":"c1","object":"chat.completion","created":5,"model":"m",)"
                   R"("choices":[{"index":0,"message":{"role":"assistant","content":"Hi!"},"finish_reason":"stop"}]})")
            << "Hi!" << QString();
        QTest::newRow("401 with message")
            << 401 << QByteArray(R"({"error":{"message":"Incorrect API key provided","type":"invalid_request_error"}})")
            << QString() << "HTTP 401: Incorrect API key provided";
        QTest::newRow("429 with a plain error")
            << 429 << QByteArray(R"({"error":"Slow down"})") << QString() << "HTTP 429: Slow down";
        QTest::newRow("502 without JSON") << 502 << QByteArray("<html>Bad gateway</html>") << QString() << "HTTP 502";
        QTest::newRow("200 not JSON") << 200 << QByteArray("nope") << QString()
                                      << "The reply could not be read: illegal value";
        QTest::newRow("200 not a completion") << 200 << QByteArray(R"({"choices":"x"})") << QString()
                                              << "The reply could not be read: not a chat completion";
    }

    void sendResults()
    {
        QFETCH(int, status);
        QFETCH(QByteArray, body);
        QFETCH(QString, content);
        QFETCH(QString, failure);
        streamReply(ScriptedReply::json(body, status));
        std::optional<OpenAIChatClient::CompletionResult> result;
        client().send("m", hello, {}, this, [&result](const OpenAIChatClient::CompletionResult &r) { result = r; });
        QTRY_VERIFY(result.has_value());
        if (failure.isEmpty()) {
            const auto &completion = std::get<ChatCompletion>(*result);
            QCOMPARE(completion.choices.first().message.content, content);
            QCOMPARE(completion.choices.first().finishReason, ChatFinishReason::stop);
        } else {
            QCOMPARE(std::get<ChatError>(*result).description(), failure);
        }
    }

    void listsModels()
    {
        m_fake->on("GET", "/api/v1/models",
            ScriptedReply::json(
                QByteArray(R"({"data":[{"id":"a:free","created":1,"object":"model","owned_by":"x"}]})")));
        std::optional<OpenAIChatClient::ModelsResult> result;
        client().listModels(this, [&result](const OpenAIChatClient::ModelsResult &r) { result = r; });
        QTRY_VERIFY(result.has_value());
        QCOMPARE(std::get<ChatModel>(*result).data.first().id, "a:free");
        QCOMPARE(m_fake->lastRequest().method, "GET");
        QCOMPARE(m_fake->lastRequest().header("Authorization"), "Bearer sk-test");
        QVERIFY(m_fake->lastRequest().body.isEmpty());
    }

    // The bytes arrive in pieces cut inside a multi-byte character and inside "data: ".
    void piecesCutAnywhereGiveTheExactText_data()
    {
        QTest::addColumn<QList<QByteArray>>("pieces");
        QTest::addColumn<QStringList>("expected");
        const QByteArray first = chunkLine("Gr\u00fc\u00df");
        const QByteArray second = chunkLine(" \U0001F600!", "stop");
        const QByteArray all = first + second + "data: [DONE]\n\n";
        const qsizetype inCharacter = first.indexOf("\xc3\xbc") + 1;
        const qsizetype inPrefix = first.size() + 3;
        const qsizetype inEmoji = first.size() + second.indexOf("\xf0\x9f") + 2;
        QTest::newRow("inside a character and the prefix")
            << QList<QByteArray> { all.left(inCharacter), all.mid(inCharacter, inPrefix - inCharacter),
                   all.mid(inPrefix, inEmoji - inPrefix), all.mid(inEmoji) }
            << QStringList { QString::fromUtf8("Gr\u00fc\u00df"), QString::fromUtf8(" \U0001F600!") };
        QByteArray crlf = all;
        crlf.replace("\n", "\r\n");
        const qsizetype betweenCrAndLf = crlf.indexOf("\r\n") + 1;
        QTest::newRow("CRLF cut between CR and LF")
            << QList<QByteArray> { crlf.left(betweenCrAndLf), crlf.mid(betweenCrAndLf) }
            << QStringList { QString::fromUtf8("Gr\u00fc\u00df"), QString::fromUtf8(" \U0001F600!") };
    }

    void piecesCutAnywhereGiveTheExactText()
    {
        QFETCH(QList<QByteArray>, pieces);
        QFETCH(QStringList, expected);
        streamReply(ScriptedReply::sse(pieces, 20ms));
        const StreamOutcome outcome = runStream(client());
        QCOMPARE(outcome.finishedCalls, 1);
        QVERIFY(!outcome.error);
        QCOMPARE(outcome.pieces, expected);
        QCOMPARE(m_fake->lastRequest().piecesSentAt.size(), pieces.size());
    }

    void streamFailures_data()
    {
        QTest::addColumn<int>("scenario");
        QTest::addColumn<QStringList>("kept");
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("description");
        QTest::newRow("HTTP status") << 0 << QStringList() << int(ChatError::Kind::httpStatus)
                                     << "HTTP 402: Insufficient credits";
        QTest::newRow("cut off mid-stream")
            << 1 << QStringList { "a", "b" } << int(ChatError::Kind::transport) << QString();
        QTest::newRow("closed without end marker") << 2 << QStringList { "a", "b" } << int(ChatError::Kind::incomplete)
                                                   << "The connection closed before the reply was complete.";
        QTest::newRow("oversized line") << 3 << QStringList { "a" } << int(ChatError::Kind::transport)
                                        << "A line of the reply is longer than 8 MiB.";
    }

    void streamFailures()
    {
        QFETCH(int, scenario);
        QFETCH(QStringList, kept);
        QFETCH(int, kind);
        QFETCH(QString, description);
        ScriptedReply reply = ScriptedReply::sse({ chunkLine("a"), chunkLine("b") });
        if (scenario == 0) {
            reply = ScriptedReply::json(QByteArray(R"({"error":{"message":"Insufficient credits","code":402}})"), 402);
        } else if (scenario == 1) {
            reply.ending = ScriptedReply::Ending::CloseEarly;
        } else if (scenario == 3) {
            reply = ScriptedReply::sse(
                { chunkLine("a"), "data: " + QByteArray(9 * 1024 * 1024, 'x'), "\n\n" + chunkLine("b") });
        }
        streamReply(reply);
        const StreamOutcome outcome = runStream(client());
        QCOMPARE(outcome.finishedCalls, 1);
        QCOMPARE(outcome.pieces, kept);
        QVERIFY(outcome.error.has_value());
        QCOMPARE(int(outcome.error->kind), kind);
        if (!description.isEmpty()) {
            QCOMPARE(outcome.error->description(), description);
        }
    }

    void cancelledStreamDeliversNothingMore()
    {
        streamReply(
            ScriptedReply::sse({ chunkLine("a"), chunkLine("b"), chunkLine("c", "stop"), "data: [DONE]\n\n" }, 100ms));
        const OpenAIChatClient chat = client();
        QStringList pieces;
        int finishedCalls = 0;
        OpenAIChatClient::CallId id = 0;
        OpenAIChatClient::StreamHandlers handlers;
        handlers.onChunk = [&](const ChatCompletionChunk &chunk) {
            pieces.append(chunk.text().value_or(QString()));
            chat.cancel(id);
        };
        handlers.onFinished = [&finishedCalls](const std::optional<ChatError> &) { ++finishedCalls; };
        id = chat.stream("m", hello, {}, this, handlers);
        QTRY_COMPARE(pieces.size(), 1);
        QVERIFY(!m_http->isActive(id));
        // A whole stream on the same client, begun after the cancel, ends after anything the
        // cancelled one could still have delivered.
        QCOMPARE(runStream(chat).finishedCalls, 1);
        QCOMPARE(pieces, QStringList { "a" });
        QCOMPARE(finishedCalls, 0);
    }
};

ZENTRIK_TEST(TestOpenAIChatClient)
#include "tst_openaichatclient.moc"
