#include <QtTest>

#include <QElapsedTimer>
#include <QTemporaryDir>

#include "settings/secretstore.h"
#include "support/clirunner.h"
#include "support/fakeprovider.h"
#include "support/hungsecretservice.h"
#include "support/testregistry.h"

using namespace zentrik;
using zentrik::test::FakeProvider;
using zentrik::test::ScriptedReply;

namespace {

struct TimedRun
{
    CliResult result;
    qint64 elapsedMs = 0;
};

TimedRun timedRun(const QStringList &arguments, const QByteArray &input, const QProcessEnvironment &extra)
{
    QElapsedTimer timer;
    timer.start();
    TimedRun run { runCliProcess(arguments, input, extra), 0 };
    run.elapsedMs = timer.elapsed();
    return run;
}

const QByteArray chatReply(R"({"choices":[{"index":0,"message":{"role":"assistant","content":"Four."}}]})");

} // namespace

// Where keys and text enter the command line: stdin that cannot be read, keys that cannot
// be keys, and a Secret Service that never answers.
class KeysAndInputTest : public QObject
{
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<FakeProvider> m_fake;

    QProcessEnvironment environment() const
    {
        QProcessEnvironment env;
        env.insert(QStringLiteral("ZENTRIK_CONFIG_DIR"), m_dir->path());
        env.insert(QStringLiteral("ZENTRIK_OPENAI_BASE_URL"), m_fake->baseUrl().toString());
        return env;
    }

private Q_SLOTS:
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        m_fake = std::make_unique<FakeProvider>();
        m_fake->on("POST", "/v1/chat/completions", ScriptedReply::json(chatReply));
    }

    void cleanup() { SecretStore().remove(QStringLiteral("openAIKey")); }

    // A directory on stdin is an error for every verb that reads stdin, never empty input.
    void unreadableStdinIsAnError_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("redact") << QStringList { "redact", "-" };
        QTest::newRow("redact without argument") << QStringList { "redact" };
        QTest::newRow("markdown strip") << QStringList { "markdown", "strip" };
        QTest::newRow("ask") << QStringList { "ask" };
        QTest::newRow("debug") << QStringList { "debug", "-" };
        QTest::newRow("image") << QStringList { "image" };
        QTest::newRow("keys set") << QStringList { "keys", "set", "openai" };
        QTest::newRow("notes search") << QStringList { "notes", "search", "-" };
    }

    void unreadableStdinIsAnError()
    {
        QFETCH(QStringList, arguments);
        QProcess process;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(environment());
        env.insert(QStringLiteral("OPENAI_API_KEY"), QStringLiteral("sk-env"));
        process.setProcessEnvironment(env);
        process.setStandardInputFile(m_dir->path());
        process.start(QStringLiteral(ZENTRIK_CLI_PATH), arguments);
        QVERIFY(process.waitForFinished(30000));
        const QByteArray err = process.readAllStandardError();
        QCOMPARE(process.exitCode(), 1);
        QCOMPARE(err, QByteArray("zentrik-cli: cannot read stdin: it is a directory\n"));
        QVERIFY(process.readAllStandardOutput().isEmpty());
        QCOMPARE(m_fake->requestCount(), 0);
    }

    // Keys are printable ASCII without spaces; anything else is refused where it enters,
    // before it reaches the store or a request header.
    void keysThatCannotBeKeysAreRefused_data()
    {
        QTest::addColumn<QByteArray>("key");
        QTest::addColumn<QByteArray>("fault");
        QTest::newRow("header injection")
            << QByteArray("sk-abc\r\nX-Injected: yes") << QByteArray("a control character");
        QTest::newRow("space") << QByteArray("sk-abc def") << QByteArray("a space");
        QTest::newRow("non-ASCII") << QByteArray("sk-\xc3\xa4\x62\x63") << QByteArray("a non-ASCII character");
    }

    void keysThatCannotBeKeysAreRefused()
    {
        QFETCH(QByteArray, key);
        QFETCH(QByteArray, fault);
        const CliResult set = runCliProcess(
            { QStringLiteral("keys"), QStringLiteral("set"), QStringLiteral("openai") }, key + "\n", environment());
        QCOMPARE(set.exitCode, 1);
        QCOMPARE(set.err,
            "zentrik-cli: the openai key contains " + fault
                + "; an API key is printable ASCII without spaces (nothing was stored)\n");
        QVERIFY(!SecretStore().get(QStringLiteral("openAIKey")).has_value());

        QProcessEnvironment env = environment();
        env.insert(QStringLiteral("OPENAI_API_KEY"), QString::fromUtf8(key));
        const CliResult ask = runCliProcess({ "ask", "Two plus two?" }, {}, env);
        QCOMPARE(ask.exitCode, 1);
        QCOMPARE(ask.err,
            "zentrik-cli: OPENAI_API_KEY contains " + fault + "; an API key is printable ASCII without spaces\n");
        QCOMPARE(m_fake->requestCount(), 0);
    }

    // Only the line break that ends stdin is not part of the key.
    void keysSetKeepsTheKeyWithoutItsLineBreak()
    {
        QCOMPARE(runCliProcess({ "keys", "set", "openai" }, "sk-line\r\n", environment()).exitCode, 0);
        QCOMPARE(SecretStore().get(QStringLiteral("openAIKey")), std::optional<QString>(QStringLiteral("sk-line")));
    }

    // A Secret Service that owns its name and never answers: every keys action gives up
    // at one deadline with a line naming the Secret Service, and a verb that needs a stored
    // key says why it has none.
    void aHungSecretServiceGivesOneClearLine_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QByteArray>("input");
        QTest::newRow("keys set") << QStringList { "keys", "set", "openai" } << QByteArray("sk-new\n");
        QTest::newRow("keys delete") << QStringList { "keys", "delete", "fal" } << QByteArray();
        QTest::newRow("keys status") << QStringList { "keys", "status" } << QByteArray();
        QTest::newRow("ask without a key in the environment") << QStringList { "ask", "Two plus two?" } << QByteArray();
    }

    void aHungSecretServiceGivesOneClearLine()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QByteArray, input);
        test::HungSecretService hung;
        QVERIFY2(hung.isReady(), qPrintable(hung.error()));
        QProcessEnvironment env = environment();
        env.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), hung.address());
        const TimedRun run = timedRun(arguments, input, env);
        QCOMPARE(run.result.exitCode, 1);
        QCOMPARE(run.result.err.count('\n'), 1);
        QVERIFY2(
            run.result.err.contains("the Secret Service did not answer within 2 seconds"), run.result.err.constData());
        // One deadline for the whole action (status reads three items, set removes then adds).
        QVERIFY2(run.elapsedMs < SecretStore::timeoutMs + 1000, qPrintable(QString::number(run.elapsedMs)));
        QCOMPARE(m_fake->requestCount(), 0);
    }

    // With the key in the environment the store is not asked at all: a hung Secret Service
    // costs ask nothing next to a healthy one.
    void environmentKeyNeverWaitsForTheStore()
    {
        test::HungSecretService hung;
        QVERIFY2(hung.isReady(), qPrintable(hung.error()));
        QProcessEnvironment env = environment();
        env.insert(QStringLiteral("OPENAI_API_KEY"), QStringLiteral("sk-env"));
        const QStringList ask { QStringLiteral("ask"), QStringLiteral("Two plus two?") };
        const TimedRun healthy = timedRun(ask, {}, env);
        env.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), hung.address());
        const TimedRun stuck = timedRun(ask, {}, env);
        QCOMPARE(healthy.result.exitCode, 0);
        QCOMPARE(stuck.result.exitCode, 0);
        QCOMPARE(stuck.result.out, QByteArray("Four.\n"));
        qInfo("ask with OPENAI_API_KEY: %lld ms with a healthy keyring, %lld ms with a hung one", healthy.elapsedMs,
            stuck.elapsedMs);
        // Waiting for the store at all would cost the whole 2 s deadline.
        QVERIFY2(stuck.elapsedMs < healthy.elapsedMs + SecretStore::timeoutMs / 2,
            qPrintable(QStringLiteral("%1 ms against %2 ms").arg(stuck.elapsedMs).arg(healthy.elapsedMs)));
    }
};
ZENTRIK_TEST(KeysAndInputTest)

#include "tst_keysandinput.moc"
