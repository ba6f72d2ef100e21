#include "model/modelcatalog.h"
#include "settings/secretstore.h"
#include "support/clirunner.h"
#include "support/testregistry.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QtTest>

using namespace zentrik;

// The CLI's conventions and its models, config and keys verbs, run as a user would.
class FoundationVerbsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_cli = std::make_unique<zentrik::test::CliFixture>();
        SecretStore().clear();
    }

    void cleanup()
    {
        SecretStore().clear();
        m_cli.reset();
    }

    void conventions_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QByteArray>("stdoutHas");
        // A few go through the program's main, to see the exit code reach the shell.
        QTest::addColumn<bool>("asProgram");
        QTest::newRow("version") << QStringList { "--version" } << 0 << QByteArray("zentrik-cli 0.") << true;
        QTest::newRow("help lists verbs") << QStringList { "--help" } << 0 << QByteArray("keys") << false;
        QTest::newRow("unknown verb") << QStringList { "frobnicate" } << 2 << QByteArray() << true;
        QTest::newRow("unknown option") << QStringList { "models", "--bogus" } << 2 << QByteArray() << false;
        QTest::newRow("config bad model")
            << QStringList { "config", "set", "text-model", "gpt-4o" } << 2 << QByteArray() << false;
        QTest::newRow("keys unknown provider") << QStringList { "keys", "set", "google" } << 2 << QByteArray() << true;
    }

    void conventions()
    {
        QFETCH(QStringList, arguments);
        QFETCH(int, exitCode);
        QFETCH(QByteArray, stdoutHas);
        QFETCH(bool, asProgram);
        const CliResult result = asProgram ? runCliProcess(arguments) : runCli(arguments);
        QVERIFY(!result.crashed);
        QCOMPARE(result.exitCode, exitCode);
        QVERIFY2(result.out.contains(stdoutHas), result.out.constData());
        if (exitCode != 0) {
            // One line on stderr, nothing on stdout.
            QCOMPARE(result.err.count('\n'), 1);
            QVERIFY(result.out.isEmpty());
        }
    }

    void modelsJsonListsBothCataloguesAndSelection()
    {
        QCOMPARE(runCli({ "config", "set", "image-model", "DALL-E" }).exitCode, 0);
        const CliResult result = runCli({ "models", "--json" });
        QCOMPARE(result.exitCode, 0);
        const QJsonObject root = QJsonDocument::fromJson(result.out).object();
        const QJsonArray text = root.value(QStringLiteral("textModels")).toArray();
        const QJsonArray image = root.value(QStringLiteral("imageModels")).toArray();
        QCOMPARE(text.size(), ModelCatalog::textModels().size());
        QCOMPARE(image.size(), ModelCatalog::imageModels().size());
        int selectedText = 0;
        for (const QJsonValue &model : text) {
            const QJsonObject object = model.toObject();
            QCOMPARE(object.keys(), (QStringList { "icon", "id", "name", "selected", "usage" }));
            if (object.value(QStringLiteral("selected")).toBool()) {
                ++selectedText;
                QCOMPARE(object.value(QStringLiteral("id")).toString(), QStringLiteral("gpt-4o-mini"));
            }
        }
        QCOMPARE(selectedText, 1);
        QVERIFY(image.at(0).toObject().value(QStringLiteral("selected")).toBool());
        QVERIFY(!image.at(1).toObject().value(QStringLiteral("selected")).toBool());
    }

    void configRoundTrips_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("readBack");
        QTest::newRow("text model") << QStringLiteral("text-model") << QStringLiteral("claude-3-opus-20240229")
                                    << QStringLiteral("claude-3-opus-20240229");
        QTest::newRow("any free model") << QStringLiteral("text-model") << QStringLiteral("new/model:free")
                                        << QStringLiteral("new/model:free");
        QTest::newRow("dark mode on") << QStringLiteral("dark-mode") << QStringLiteral("on") << QStringLiteral("true");
    }

    void configRoundTrips()
    {
        QFETCH(QString, name);
        QFETCH(QString, value);
        QFETCH(QString, readBack);
        QCOMPARE(runCli({ "config", "set", name, value }).exitCode, 0);
        const CliResult result = runCli({ "config", "get", name });
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(result.out, readBack.toUtf8() + '\n');
    }

    void keysAreStoredButNeverPrinted()
    {
        const QByteArray secret("sk-very-secret-value-123");
        CliResult set = runCli({ "keys", "set", "openai" }, secret + "\n");
        QCOMPARE(set.exitCode, 0);
        QVERIFY(!set.out.contains(secret) && !set.err.contains(secret));
        QCOMPARE(SecretStore().get(QStringLiteral("openAIKey")), std::optional<QString>(QString::fromUtf8(secret)));

        const CliResult status = runCli({ "keys", "status" });
        QCOMPARE(status.exitCode, 0);
        QVERIFY(!status.out.contains(secret));
        QVERIFY2(status.out.contains("openai     set (secret store)"), status.out.constData());
        QVERIFY(status.out.contains("anthropic  not set"));

        QProcessEnvironment env;
        env.insert(QStringLiteral("FAL_KEY"), QStringLiteral("env-secret"));
        const CliResult json = runCli({ "keys", "status", "--json" }, {}, env);
        QVERIFY(!json.out.contains("env-secret"));
        const QJsonArray entries = QJsonDocument::fromJson(json.out).array();
        QCOMPARE(entries.size(), 3);
        QCOMPARE(entries.at(2).toObject().value(QStringLiteral("source")).toString(), QStringLiteral("FAL_KEY"));

        QCOMPARE(runCli({ "keys", "delete", "openai" }).exitCode, 0);
        QVERIFY(!SecretStore().get(QStringLiteral("openAIKey")).has_value());
        // Deleting again is not an error, and an empty stdin stores nothing.
        QCOMPARE(runCli({ "keys", "delete", "openai" }).exitCode, 0);
        QCOMPARE(runCli({ "keys", "set", "fal" }, "\n").exitCode, 1);
    }

    void keysFailCleanlyWithoutSecretService()
    {
        QProcessEnvironment env;
        env.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), QStringLiteral("unix:path=/nonexistent/bus"));
        QElapsedTimer timer;
        timer.start();
        // A process of its own: this one is connected to the test's session bus already.
        const CliResult result = runCliProcess({ "keys", "set", "openai" }, "k\n", env);
        QCOMPARE(result.exitCode, 1);
        QVERIFY(result.err.contains("no Secret Service"));
        QVERIFY(timer.elapsed() < 5000);
    }

private:
    std::unique_ptr<zentrik::test::CliFixture> m_cli;
};
ZENTRIK_TEST(FoundationVerbsTest)

#include "tst_foundationverbs.moc"
