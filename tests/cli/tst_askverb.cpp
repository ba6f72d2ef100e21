#include <QtTest>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "support/clirunner.h"
#include "support/fakeprovider.h"
#include "support/replies.h"
#include "support/testregistry.h"

using zentrik::test::chunkLine;
using zentrik::test::CliFixture;
using zentrik::test::ScriptedReply;

namespace {

QByteArray lastLine(const QByteArray &text)
{
    const QList<QByteArray> lines = text.trimmed().split('\n');
    return lines.isEmpty() ? QByteArray() : lines.last();
}

} // namespace

// zentrik-cli ask against the fake provider, keys from the environment.
class AskVerbTest : public QObject
{
    Q_OBJECT

    std::unique_ptr<CliFixture> m_cli;

private Q_SLOTS:
    void init()
    {
        m_cli = std::make_unique<CliFixture>(
            CliFixture::Keys { { "OPENAI_API_KEY", "sk-from-env" }, { "ANTHROPIC_API_KEY", "sk-ant-env" } });
    }

    void cleanup() { m_cli.reset(); }

    void printsTheWholeReply_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QByteArray>("input");
        QTest::addColumn<QString>("prompt");
        QTest::newRow("text argument") << QStringList { "ask", "--model", "gpt-4o-mini", "What is 2+2?" }
                                       << QByteArray() << "What is 2+2?";
        QTest::newRow("stdin") << QStringList { "ask", "--model", "gpt-4o-mini", "-" } << QByteArray("From\nstdin")
                               << "From\nstdin";
        QTest::newRow("stdin without dash") << QStringList { "ask" } << QByteArray("Default model") << "Default model";
    }

    void printsTheWholeReply()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QByteArray, input);
        QFETCH(QString, prompt);
        m_cli->fake.on("POST", "/v1/chat/completions",
            ScriptedReply::json(
                QByteArray(R"({"choices":[{"index":0,"message":{"role":"assistant","content":"Four."}}]})")));
        const CliResult result = runCli(arguments, input);
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(result.out, QByteArray("Four.\n"));
        const auto request = m_cli->fake.lastRequest();
        QCOMPARE(request.header("Authorization"), "Bearer sk-from-env");
        QCOMPARE(
            request.json().object().value("messages").toArray().last().toObject().value("content").toString(), prompt);
    }

    void streamsTheReply()
    {
        m_cli->fake.on("POST", "/v1/messages",
            ScriptedReply::sse(
                { "data: {\"type\":\"content_block_delta\",\"delta\":{\"type\":\"text_delta\",\"text\":\"Str\"}}\n\n",
                    "data: "
                    "{\"type\":\"content_block_delta\",\"delta\":{\"type\":\"text_delta\",\"text\":\"eamed\"}}\n\n",
                    "data: {\"type\":\"message_stop\"}\n\n" }));
        const CliResult result = runCli({ "ask", "--stream", "--model", "claude-3-haiku-20240307", "Go" });
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(result.out, QByteArray("Streamed\n"));
        QCOMPARE(m_cli->fake.lastRequest().header("x-api-key"), "sk-ant-env");
    }

    void failuresAreOneLineAndExitOne_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QByteArray>("out");
        QTest::addColumn<QByteArray>("err");
        QTest::newRow("stream refused by the service")
            << QStringList { "ask", "--stream", "--model", "gpt-4o-mini", "x" } << QByteArray()
            << QByteArray("zentrik-cli: A network error occurred: HTTP 401: Incorrect API key provided");
        QTest::newRow("stream cut short")
            << QStringList { "ask", "--stream", "--model", "gpt-4-turbo", "x" } << QByteArray("partial\n")
            << QByteArray("zentrik-cli: The network connection was lost. Please check your internet connection and "
                          "try again.");
        QTest::newRow("unknown model")
            << QStringList { "ask", "--model", "gpt-5", "x" } << QByteArray()
            << QByteArray("zentrik-cli: Invalid model selected. Please choose a valid model in Settings.");
    }

    void failuresAreOneLineAndExitOne()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QByteArray, out);
        QFETCH(QByteArray, err);
        if (arguments.contains("gpt-4-turbo")) {
            m_cli->fake.on("POST", "/v1/chat/completions", ScriptedReply::sse({ chunkLine("partial") }));
        } else {
            m_cli->fake.on("POST", "/v1/chat/completions",
                ScriptedReply::json(QByteArray(R"({"error":{"message":"Incorrect API key provided"}})"), 401));
        }
        const CliResult result = runCli(arguments);
        QCOMPARE(result.exitCode, 1);
        QCOMPARE(result.out, out);
        QCOMPARE(lastLine(result.err), err);
        QVERIFY(!result.err.contains("sk-from-env"));
    }

    // A provider quoting the key back in its error: the terminal shows [KEY] in its place,
    // whether the reply was streamed or awaited whole.
    void quotedKeysNeverReachTheTerminal_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<bool>("showsProviderWords");
        QTest::newRow("streamed") << QStringList { "ask", "--stream", "--model", "gpt-4o-mini", "x" } << true;
        QTest::newRow("whole") << QStringList { "ask", "--model", "gpt-4o-mini", "x" } << false;
    }

    void quotedKeysNeverReachTheTerminal()
    {
        QFETCH(QStringList, arguments);
        QFETCH(bool, showsProviderWords);
        m_cli->fake.on("POST", "/v1/chat/completions",
            ScriptedReply::json(
                QByteArray("{\"error\":{\"message\":\"Incorrect API key provided: sk-from-env\"}}"), 401));
        const CliResult result = runCli(arguments);
        QCOMPARE(result.exitCode, 1);
        QCOMPARE(m_cli->fake.lastRequest().header("Authorization"), "Bearer sk-from-env");
        QVERIFY2(!result.err.contains("sk-from-env") && !result.out.contains("sk-from-env"), result.err.constData());
        QCOMPARE(result.err.contains("Incorrect API key provided: [KEY]"), showsProviderWords);
    }

    void usageErrors_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("nothing to ask") << QStringList { "ask" };
        QTest::newRow("unknown option") << QStringList { "ask", "--fast", "a" };
    }

    void usageErrors()
    {
        QFETCH(QStringList, arguments);
        const CliResult result = runCli(arguments, "  \n");
        QCOMPARE(result.exitCode, 2);
        QVERIFY(result.out.isEmpty());
        QCOMPARE(m_cli->fake.requestCount(), 0);
    }
};

ZENTRIK_TEST(AskVerbTest)
#include "tst_askverb.moc"
