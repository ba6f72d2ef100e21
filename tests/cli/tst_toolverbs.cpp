#include "support/clirunner.h"
#include "support/fakeprovider.h"
#include "support/replies.h"
#include "support/testregistry.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QtTest>

using zentrik::test::chunkLine;
using zentrik::test::CliFixture;
using zentrik::test::ScriptedReply;

namespace {

QString sentText(const zentrik::test::RecordedRequest &request)
{
    return zentrik::test::lastMessageText(request.json());
}

} // namespace

// generate, ask's confirmation, debug and sample-data, run as a user would against the fake provider.
class ToolVerbsTest : public QObject
{
    Q_OBJECT

    std::unique_ptr<CliFixture> m_cli;

private Q_SLOTS:
    void init()
    {
        m_cli = std::make_unique<CliFixture>(
            CliFixture::Keys { { "OPENAI_API_KEY", "sk-from-env" }, { "ANTHROPIC_API_KEY", "sk-ant-env" } });
        m_cli->fake.on("POST", "/v1/chat/completions",
            ScriptedReply::sse({ chunkLine("Acme: "), chunkLine("built to last."), zentrik::test::doneLine }));
    }

    void cleanup() { m_cli.reset(); }

    void generateStreamsTheReply()
    {
        const CliResult result = runCli(
            { "generate", "Slogan Generator", "--field", "Brand/Product Name=Acme", "--model", "gpt-3.5-turbo-1106" });
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(result.out, QByteArray("Acme: built to last.\n"));
        const QString sent = sentText(m_cli->fake.lastRequest());
        QVERIFY(sent.contains("Category: Slogan Generator\nBrand/Product Name: Acme\n\nStructure:\n1. "));
        // The same prompt the prompt verb prints.
        const CliResult prompt = runCli({ "prompt", "Slogan Generator", "--field", "Brand/Product Name=Acme" });
        QCOMPARE(QString::fromUtf8(prompt.out), sent + "\n");
    }

    // Every verb that sends runs the one model and key check before anything leaves: a refused
    // selection prints the check's own message and reaches no provider; a passed one is sent.
    void everyVerbChecksTheModelAndKeyFirst_data()
    {
        QTest::addColumn<QStringList>("verb");
        QTest::addColumn<QString>("model");
        QTest::addColumn<bool>("withKey");
        QTest::addColumn<QString>("refusal");
        const QString noSelection = "Please select a text model in Settings.";
        const QString invalid = "Invalid model selected. Please choose a valid model in Settings.";
        const QString openAIMissing = "OpenAI API key is missing. Please add it in Settings.";
        const QString claudeMissing = "Claude API key is missing. Please add it in Settings.";
        const QList<QStringList> verbs { { "debug", "x = 1 +" }, { "sample-data", "--format", "JSON", "x = 1 +" } };
        for (const QStringList &verb : verbs) {
            const QByteArray name = verb.first().toUtf8();
            QTest::newRow(name + " no selection") << verb << QString() << true << noSelection;
            QTest::newRow(name + " id outside the catalogue") << verb << "gpt-4o" << true << invalid;
            // One model of each provider; the catalogue's own test checks every id.
            QTest::newRow(name + " openai with key") << verb << "gpt-4o-mini" << true << QString();
            QTest::newRow(name + " openai without key") << verb << "gpt-4o-mini" << false << openAIMissing;
            QTest::newRow(name + " claude with key") << verb << "claude-3-haiku-20240307" << true << QString();
            QTest::newRow(name + " claude without key") << verb << "claude-3-haiku-20240307" << false << claudeMissing;
            QTest::newRow(name + " free without key")
                << verb << "mistralai/mistral-7b-instruct:free" << false << QString();
        }
        // The generators take every model whose key is there, gpt-4o-mini included.
        QTest::newRow("generate gpt-4o-mini")
            << QStringList { "generate", "Slogan Generator", "--field", "Brand/Product Name=Acme" } << "gpt-4o-mini"
            << true << QString();
        QTest::newRow("generate claude without key")
            << QStringList { "generate", "Slogan Generator" } << "claude-instant" << false << claudeMissing;
    }

    void everyVerbChecksTheModelAndKeyFirst()
    {
        QFETCH(QStringList, verb);
        QFETCH(QString, model);
        QFETCH(bool, withKey);
        QFETCH(QString, refusal);
        m_cli->fake.on(
            "POST", "/v1/messages", ScriptedReply::json(QByteArray(R"({"content":[{"type":"text","text":"ok"}]})")));
        QProcessEnvironment env;
        if (!withKey) {
            // Neither from the environment nor from the test's own keyring, which holds none.
            env.insert("OPENAI_API_KEY", "");
            env.insert("ANTHROPIC_API_KEY", "");
        }
        const CliResult result = runCli(verb + QStringList { "--model", model }, {}, env);
        if (!refusal.isEmpty()) {
            QCOMPARE(result.err, "zentrik-cli: " + refusal.toUtf8() + "\n");
            QCOMPARE(result.exitCode, 1);
            QCOMPARE(m_cli->fake.requestCount(), 0);
            return;
        }
        for (const char *message : { "Please select a text model in Settings.",
                 "Invalid model selected. Please choose a valid model in Settings.",
                 "OpenAI API key is missing. Please add it in Settings.",
                 "Claude API key is missing. Please add it in Settings.",
                 "Unsupported model selected. Please choose a valid model in Settings." }) {
            QVERIFY2(!result.err.contains(message), result.err.constData());
        }
        if (model.endsWith(":free")) {
            return; // past the check; whether it is answered depends on the build's own key
        }
        QVERIFY2(result.exitCode == 0, result.err.constData());
        QCOMPARE(m_cli->fake.requestCount(), 1);
        QCOMPARE(m_cli->fake.lastRequest().json().object().value("model").toString(), model);
    }

    void personalInformationNeedsAChoice_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("sentHas");
        const QStringList generate { "generate", "Slogan Generator", "--model", "gpt-3.5-turbo-1106", "--field",
            "Brand/Product Name=mail bob@example.com" };
        QTest::newRow("generate without --send") << generate << 2 << QString();
        QTest::newRow("generate redacted")
            << (generate + QStringList { "--send", "redacted" }) << 0 << "mail [EMAIL_ADDRESS]";
        QTest::newRow("generate original")
            << (generate + QStringList { "--send", "original" }) << 0 << "mail bob@example.com";
        const QStringList ask { "ask", "--model", "gpt-4o-mini", "write to bob@example.com" };
        QTest::newRow("ask without --send") << ask << 2 << QString();
        QTest::newRow("ask redacted, streamed")
            << (ask + QStringList { "--send", "redacted", "--stream" }) << 0 << "write to [EMAIL_ADDRESS]";
        QTest::newRow("bad --send") << (ask + QStringList { "--send", "maybe" }) << 2 << QString();
    }

    void personalInformationNeedsAChoice()
    {
        QFETCH(QStringList, arguments);
        QFETCH(int, exitCode);
        QFETCH(QString, sentHas);
        const CliResult result = runCli(arguments);
        QCOMPARE(result.exitCode, exitCode);
        if (sentHas.isEmpty()) {
            QCOMPARE(m_cli->fake.requestCount(), 0);
            QCOMPARE(result.err.count('\n'), 1);
        } else {
            QVERIFY2(
                sentText(m_cli->fake.lastRequest()).contains(sentHas), qPrintable(sentText(m_cli->fake.lastRequest())));
        }
    }

    // On a terminal the user sees both texts and answers; anything else is asked again.
    void personalInformationAskedOnATerminal_data()
    {
        QTest::addColumn<QByteArray>("answers");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("sent");
        QTest::addColumn<int>("questions");
        QTest::newRow("original") << QByteArray("o\n") << 0 << "write to bob@example.com" << 1;
        QTest::newRow("redacted after an unclear answer")
            << QByteArray("maybe\n REDACTED \n") << 0 << "write to [EMAIL_ADDRESS]" << 2;
        QTest::newRow("the input ends") << QByteArray("x\n") << 2 << QString() << 1;
    }

    void personalInformationAskedOnATerminal()
    {
        QFETCH(QByteArray, answers);
        QFETCH(int, exitCode);
        QFETCH(QString, sent);
        QFETCH(int, questions);
        m_cli->fake.on("POST", "/v1/chat/completions",
            ScriptedReply::json(QByteArray(R"({"choices":[{"message":{"role":"assistant","content":"Done."}}]})")));
        zentrik::test::CapturedConsole console(answers);
        console.terminal = true;
        const CliResult result = runCli({ "ask", "--model", "gpt-4o-mini", "write to bob@example.com" }, console);
        QCOMPARE(result.exitCode, exitCode);
        QVERIFY2(result.err.contains("Original Message:\nwrite to bob@example.com\n\nRedacted Message:\n"
                                     "write to [EMAIL_ADDRESS]\n"),
            result.err.constData());
        QCOMPARE(result.err.count("Send [o]riginal or [r]edacted? "), questions);
        if (sent.isEmpty()) {
            QCOMPARE(m_cli->fake.requestCount(), 0);
        } else {
            QCOMPARE(sentText(m_cli->fake.lastRequest()), sent);
            QCOMPARE(result.out, QByteArray("Done.\n"));
        }
    }

    void askUsesTheSuggestionPrefix()
    {
        m_cli->fake.on("POST", "/v1/chat/completions",
            ScriptedReply::json(
                QByteArray(R"({"choices":[{"message":{"role":"assistant","content":"**Fixed.**"}}]})")));
        const CliResult result
            = runCli({ "ask", "--suggestion", "Grammar Checker", "--model", "gpt-4o-mini", "me and him goes" });
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(result.out, QByteArray("**Fixed.**\n"));
        QCOMPARE(sentText(m_cli->fake.lastRequest()),
            QString("Please check the following text for grammatical errors and provide corrections: me and him goes"));
        QCOMPARE(runCli({ "ask", "--suggestion", "Poetry", "x" }).exitCode, 2);
    }

    void debugSendsRedactedAndStreams()
    {
        const CliResult result = runCli(
            { "debug", "--suggestion", "logicError", "--model", "gpt-4o-mini", "-" }, "x = 1 + # ask jo@example.com");
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(result.out, QByteArray("Acme: built to last.\n"));
        QCOMPARE(sentText(m_cli->fake.lastRequest()),
            QString("There seems to be a logic error in my program. Can you assist in finding the issue?\n\n"
                    "x = 1 + # ask [EMAIL_ADDRESS]"));
    }

    void debugWithClaudeWaitsForWholeReply()
    {
        m_cli->fake.on("POST", "/v1/messages",
            ScriptedReply::json(QByteArray(R"({"content":[{"type":"text","text":"Use a colon."}]})")));
        const CliResult result = runCli({ "debug", "--model", "claude-3-haiku-20240307", "if x print(x)" });
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(result.out, QByteArray("Use a colon.\n"));
        QVERIFY(!m_cli->fake.lastRequest().json().object().contains("stream"));
    }

    void sampleDataFormats_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("sent");
        QTest::newRow("csv") << QStringList {
            "sample-data", "--format", "csv", "--model", "gpt-4o-mini", "three customers"
        } << 0 << "Create sample data in CSV format with the following information:\n\nthree customers";
        QTest::newRow("no format") << QStringList { "sample-data", "three users" } << 2 << QString();
        QTest::newRow("unknown format") << QStringList { "sample-data", "--format", "TOML", "x" } << 2 << QString();
        QTest::newRow("unknown debug key") << QStringList { "debug", "--suggestion", "typo", "x" } << 2 << QString();
    }

    void sampleDataFormats()
    {
        QFETCH(QStringList, arguments);
        QFETCH(int, exitCode);
        QFETCH(QString, sent);
        const CliResult result = runCli(arguments);
        QCOMPARE(result.exitCode, exitCode);
        if (sent.isEmpty()) {
            QCOMPARE(m_cli->fake.requestCount(), 0);
        } else {
            QCOMPARE(sentText(m_cli->fake.lastRequest()), sent);
        }
    }
};

ZENTRIK_TEST(ToolVerbsTest)
#include "tst_toolverbs.moc"
