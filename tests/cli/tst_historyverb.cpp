#include <QtTest>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

#include "history/historystore.h"
#include "support/clirunner.h"
#include "support/fakeprovider.h"
#include "support/replies.h"
#include "support/testregistry.h"

using namespace std::chrono_literals;
using zentrik::test::CliFixture;
using zentrik::test::ScriptedReply;

namespace {

QStringList sentConversation(const zentrik::test::RecordedRequest &request)
{
    QStringList messages;
    for (const QJsonValue &message : request.json().object().value("messages").toArray()) {
        messages.append(
            message.toObject().value("role").toString() + ": " + message.toObject().value("content").toString());
    }
    return messages;
}

QJsonArray listed(const QStringList &extra = {})
{
    const CliResult result = runCli(QStringList { "history", "list", "--json" } + extra);
    return QJsonDocument::fromJson(result.out).array();
}

} // namespace

// zentrik-cli's history: the chat verbs save and go on with conversations, and the history
// verb lists, shows, searches, exports, imports and deletes them.
class HistoryVerbTest : public QObject
{
    Q_OBJECT

    std::unique_ptr<CliFixture> m_cli;

private Q_SLOTS:
    void init() { m_cli = std::make_unique<CliFixture>(CliFixture::Keys { { "OPENAI_API_KEY", "sk-from-env" } }); }
    void cleanup() { m_cli.reset(); }

    void chatVerbsSaveAndContinue()
    {
        for (const char *reply : { "A1", "A2", "A3" }) {
            m_cli->fake.enqueue("POST", "/v1/chat/completions", ScriptedReply::json(zentrik::test::completion(reply)));
        }
        const QStringList model { "--model", "gpt-4o-mini" };
        QCOMPARE(runCli(QStringList { "ask", "Q1" } + model).exitCode, 0);
        QCOMPARE(runCli(QStringList { "ask", "--continue-last", "Q2" } + model).exitCode, 0);
        const QJsonObject conversation = listed().first().toObject();
        QCOMPARE(conversation.value("tool").toString(), "askMeAnything");
        QCOMPARE(conversation.value("messages").toInt(), 4);
        QCOMPARE(sentConversation(m_cli->fake.lastRequest()),
            (QStringList { "system: You are a helpful assistant.", "user: Q1", "assistant: A1", "user: Q2" }));

        const QString number = QString::number(conversation.value("number").toInt());
        const CliResult third = runCli(QStringList { "ask", "--continue", number, "--no-save", "Q3" } + model);
        QCOMPARE(third.out, QByteArray("A3\n"));
        QCOMPARE(sentConversation(m_cli->fake.lastRequest()).size(), 6);
        QCOMPARE(listed().first().toObject().value("messages").toInt(), 4);

        const CliText wrongTool = runCli({ "debug", "--continue", number, "x" });
        QCOMPARE(wrongTool.exitCode, 1);
        QCOMPARE(wrongTool.err, "zentrik-cli: That conversation belongs to Ask Me Anything.\n");
        QCOMPARE(runCli({ "ask", "--continue", "99", "x" }).exitCode, 1);
        QCOMPARE(runCli({ "sample-data", "--format", "JSON", "--continue-last", "x" }).err,
            QByteArray("zentrik-cli: no stored conversation to continue\n"));
        QCOMPARE(m_cli->fake.requestCount(), 3);
    }

    void historyVerbListsShowsSearchesExportsImportsAndDeletes()
    {
        m_cli->fake.enqueue(
            "POST", "/v1/chat/completions", ScriptedReply::json(zentrik::test::completion("In the reeds.")));
        m_cli->fake.enqueue("POST", "/v1/chat/completions", ScriptedReply::json(zentrik::test::completion("Fine.")));
        QCOMPARE(runCli({ "ask", "--model", "gpt-4o-mini", "Where do herons nest?" }).exitCode, 0);
        QCOMPARE(runCli({ "ask", "--model", "gpt-4o-mini", "Something else" }).exitCode, 0);

        const CliText list = runCli({ "history", "list" });
        QCOMPARE(list.out.count('\n'), 2);
        QVERIFY(list.out.contains("Ask Me Anything") && list.out.contains("Where do herons nest?"));
        const CliText show = runCli({ "history", "show", "1" });
        QVERIFY(show.out.startsWith("# Where do herons nest?\n"));
        QVERIFY(show.out.contains("**Assistant**") && show.out.contains("In the reeds."));
        const QJsonArray found
            = QJsonDocument::fromJson(runCli({ "history", "search", "heron", "--json" }).out).array();
        QCOMPARE(found.size(), 1);
        QCOMPARE(found.first().toObject().value("marked").toString(), "Where do **herons** nest?");
        QVERIFY(runCli({ "history", "search", "herons nest" }).out.contains("Where do **herons** **nest**?"));

        const QString file = m_cli->dir.filePath("everything.json");
        const CliText exported = runCli({ "history", "export", "--all", "--format", "json", "-o", file });
        QCOMPARE(exported.exitCode, 0);
        QCOMPARE(exported.err, QStringLiteral("Exported 2 conversation(s) to %1\n").arg(file));
        QCOMPARE(runCli({ "history", "import", file }).out,
            QByteArray("Imported 0 conversation(s) with 0 new message(s); 2 already there\n"));
        QCOMPARE(
            runCli({ "history", "delete", "1" }).out, QByteArray("Deleted conversation 1: Where do herons nest?\n"));
        QCOMPARE(listed().size(), 1);
        QCOMPARE(QJsonDocument::fromJson(runCli({ "history", "search", "heron", "--json" }).out).array().size(), 0);
        QCOMPARE(runCli({ "history", "import", file }).out,
            QByteArray("Imported 1 conversation(s) with 2 new message(s); 1 already there\n"));
        QCOMPARE(runCli({ "history", "export", "--all", "--format", "json" }).out, [&] {
            QFile in(file);
            in.open(QIODevice::ReadOnly);
            return in.readAll();
        }());
    }

    void usageErrors_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("no action") << QStringList { "history" };
        QTest::newRow("unknown action") << QStringList { "history", "frob" };
        QTest::newRow("show without id") << QStringList { "history", "show" };
        QTest::newRow("export of nothing") << QStringList { "history", "export" };
        QTest::newRow("export of both") << QStringList { "history", "export", "1", "--all" };
        QTest::newRow("unknown tool") << QStringList { "history", "list", "--tool", "spreadsheet" };
        QTest::newRow("unknown format") << QStringList { "history", "export", "--all", "--format", "pdf" };
        QTest::newRow("two ways to continue") << QStringList { "ask", "--continue", "1", "--continue-last", "x" };
        QTest::newRow("summary does not continue") << QStringList { "pdf", "summary", "--continue-last", "a.pdf" };
    }

    void usageErrors()
    {
        QFETCH(QStringList, arguments);
        const CliResult result = runCli(arguments);
        QCOMPARE(result.exitCode, 2);
        QVERIFY(result.out.isEmpty());
    }

    // zentrik-cli killed with SIGKILL while a follow-up's reply streams in: the database
    // opens cleanly afterwards and holds every message saved before the kill.
    void killedMidStreamKeepsEverySavedMessage()
    {
        m_cli->fake.enqueue("POST", "/v1/chat/completions", ScriptedReply::json(zentrik::test::completion("A1")));
        QCOMPARE(runCli({ "ask", "--model", "gpt-4o-mini", "Q1" }).exitCode, 0);
        m_cli->fake.on("POST", "/v1/chat/completions",
            ScriptedReply::sse(
                { zentrik::test::chunkLine("Partial"), zentrik::test::chunkLine(" never"), "data: [DONE]\n\n" }, 60s));

        QProcess child;
        child.start(
            QStringLiteral(ZENTRIK_CLI_PATH), { "ask", "--stream", "--model", "gpt-4o-mini", "--continue-last", "Q2" });
        QVERIFY(child.waitForStarted());
        const QString path = m_cli->dir.filePath("config/data/history.sqlite");
        const auto messageCount = [&] {
            zentrik::HistoryStore store(path);
            const std::optional<zentrik::ConversationRecord> latest = store.open() ? store.load("1") : std::nullopt;
            return latest ? latest->messages.size() : -1;
        };
        QByteArray printed;
        QTRY_VERIFY_WITH_TIMEOUT((printed += child.readAllStandardOutput()).contains("Partial"), 10000);
        QTRY_COMPARE_WITH_TIMEOUT(messageCount(), 3, 10000);
        child.kill();
        QVERIFY(child.waitForFinished());

        zentrik::HistoryStore store(path);
        QVERIFY(store.open());
        QVERIFY(store.notice().isEmpty()); // opened as it was, nothing moved aside
        const std::optional<zentrik::ConversationRecord> conversation = store.load("1");
        QCOMPARE(conversation->messages.size(), 3);
        QCOMPARE(conversation->messages.last().text, "Q2");
        QCOMPARE(store.database().value("PRAGMA integrity_check")->toString(), "ok");
    }
};

ZENTRIK_TEST(HistoryVerbTest)
#include "tst_historyverb.moc"
