#include <QtTest>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "settings/preferences.h"
#include "settings/secretstore.h"
#include "support/clirunner.h"
#include "support/fakeprovider.h"
#include "support/testregistry.h"
#include "voice/voicenotemanager.h"

using namespace zentrik;
using test::ScriptedReply;

using Run = CliText;

// zentrik-cli transcribe and notes against the fake provider, sharing the notes with the
// window through the same preferences file.
class TestVoiceCli : public QObject
{
    Q_OBJECT

    std::unique_ptr<test::CliFixture> m_cli;

    Run run(
        const QStringList &arguments, const QString &openAIKey = QStringLiteral("sk-cli"), const QByteArray &input = {})
    {
        QProcessEnvironment key;
        key.insert(QStringLiteral("OPENAI_API_KEY"), openAIKey);
        return runCli(arguments, input, key);
    }

    QString audioFile()
    {
        const QString path = m_cli->dir.filePath(QStringLiteral("memo.m4a"));
        QFile file(path);
        if (file.open(QIODevice::WriteOnly)) {
            file.write("not really audio");
        }
        return path;
    }

private Q_SLOTS:
    void init()
    {
        m_cli = std::make_unique<test::CliFixture>();
        // The key comes from the environment or not at all.
        SecretStore().clear();
        m_cli->fake.on(
            "POST", "/v1/audio/transcriptions", ScriptedReply::json(QByteArray(R"({"text":"Call Anna at five."})")));
    }

    void cleanup() { m_cli.reset(); }

    void transcribePrintsTheTranscript()
    {
        const Run result = run({ "transcribe", audioFile() });
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(result.out, QStringLiteral("Call Anna at five.\n"));
        QCOMPARE(result.err, QString());
        QCOMPARE(m_cli->fake.lastRequest().header("Authorization"), QByteArray("Bearer sk-cli"));
    }

    void transcribeFailures_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("key");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("error");

        QTest::newRow("no key") << QStringList { "transcribe", "FILE" } << "" << 1
                                << "zentrik-cli: API key is missing. Please add it in Settings.\n";
        QTest::newRow("missing file") << QStringList { "transcribe", "/nonexistent/a.m4a" } << "sk" << 1
                                      << "zentrik-cli: cannot read /nonexistent/a.m4a: No such file or directory\n";
        QTest::newRow("no file given") << QStringList {
            "transcribe"
        } << "sk" << 2 << "zentrik-cli: transcribe takes one FILE (see zentrik-cli transcribe --help)\n";
        QTest::newRow("unknown option") << QStringList { "transcribe", "FILE", "--fast" } << "sk" << 2
                                        << "zentrik-cli: Unknown option 'fast'.";
    }

    void transcribeFailures()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, key);
        QFETCH(int, exitCode);
        QFETCH(QString, error);
        arguments.replaceInStrings(QStringLiteral("FILE"), audioFile());
        const Run result = run(arguments, key);
        QCOMPARE(result.exitCode, exitCode);
        QCOMPARE(result.out, QString());
        QVERIFY2(result.err.startsWith(error), qPrintable(result.err));
        QCOMPARE(result.err.count(QLatin1Char('\n')), 1);
        QCOMPARE(m_cli->fake.requestCount(), 0);
    }

    void serviceErrorIsOneLine()
    {
        m_cli->fake.on("POST", "/v1/audio/transcriptions",
            ScriptedReply::json(QByteArray(R"({"error":{"message":"Invalid file format."}})"), 400));
        const Run result = run({ "transcribe", audioFile() });
        QCOMPARE(result.exitCode, 1);
        QCOMPARE(result.err, QStringLiteral("zentrik-cli: Invalid response received from the server.\n"));
    }

    void notesRoundTrip()
    {
        // A note the window made, then one added from the command line.
        {
            VoiceNoteManager window;
            window.add(VoiceNote::create("Shopping", "Oat milk, bread"));
        }
        Run added = run({ "notes", "add", audioFile() });
        QCOMPARE(added.exitCode, 0);
        QVERIFY2(added.out.startsWith(QStringLiteral("Title: New Voice Note\n")), qPrintable(added.out));
        QVERIFY(added.out.endsWith(QStringLiteral("\n\nCall Anna at five.\n")));

        const Run json = run({ "notes", "list", "--json" });
        QCOMPARE(json.exitCode, 0);
        const QJsonArray notes = QJsonDocument::fromJson(json.out.toUtf8()).array();
        QCOMPARE(notes.size(), 2);
        QCOMPARE(notes.at(0)["title"].toString(), QStringLiteral("New Voice Note"));
        QCOMPARE(notes.at(0)["transcription"].toString(), QStringLiteral("Call Anna at five."));
        QCOMPARE(notes.at(1)["title"].toString(), QStringLiteral("Shopping"));
        const QString newId = notes.at(0)["id"].toString();
        const QString oldId = notes.at(1)["id"].toString();

        const Run list = run({ "notes", "list" });
        QCOMPARE(list.out.count(QLatin1Char('\n')), 2);
        QVERIFY(list.out.startsWith(newId + QStringLiteral("  ")));
        QVERIFY(list.out.contains(QStringLiteral("  Shopping\n")));

        // A unique start of an id is enough; the edit keeps id, date and place.
        const Run edited = run({ "notes", "edit", newId.left(8).toLower(), "--title", "Call Anna" });
        QCOMPARE(edited.exitCode, 0);
        VoiceNoteManager reader;
        QCOMPARE(reader.notes().at(0).id, newId);
        QCOMPARE(reader.notes().at(0).title, QStringLiteral("Call Anna"));
        QCOMPARE(reader.notes().at(0).date.toString(Qt::ISODateWithMs), notes.at(0)["date"].toString());
        const Run retyped = run({ "notes", "edit", oldId, "--transcription", "-" }, {}, "Oat milk, rye bread");
        QCOMPARE(retyped.exitCode, 0);

        const Run search = run({ "notes", "search", "RYE", "--json" });
        QCOMPARE(search.exitCode, 0);
        const QJsonArray found = QJsonDocument::fromJson(search.out.toUtf8()).array();
        QCOMPARE(found.size(), 1);
        QCOMPARE(found.at(0)["id"].toString(), oldId);

        const Run shown = run({ "notes", "show", oldId });
        QVERIFY(shown.out.endsWith(QStringLiteral("\n\nOat milk, rye bread\n")));

        QCOMPARE(run({ "notes", "delete", oldId }).exitCode, 0);
        const Run unknown = run({ "notes", "show", oldId });
        QCOMPARE(unknown.exitCode, 1);
        QCOMPARE(unknown.err, QStringLiteral("zentrik-cli: no voice note has the id '%1'\n").arg(oldId));
        QCOMPARE(VoiceNoteManager().notes().size(), 1);
    }

    void notesUsage_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("no action") << QStringList { "notes" };
        QTest::newRow("unknown action") << QStringList { "notes", "rename", "x" };
        QTest::newRow("edit without a change") << QStringList { "notes", "edit", "x" };
        QTest::newRow("blank title") << QStringList { "notes", "edit", "x", "--title", " " };
        QTest::newRow("json with show") << QStringList { "notes", "show", "x", "--json" };
        QTest::newRow("title with delete") << QStringList { "notes", "delete", "x", "--title", "t" };
        QTest::newRow("search without text") << QStringList { "notes", "search" };
        QTest::newRow("list with argument") << QStringList { "notes", "list", "x" };
    }

    void notesUsage()
    {
        QFETCH(QStringList, arguments);
        const Run result = run(arguments);
        QCOMPARE(result.exitCode, 2);
        QCOMPARE(result.err.count(QLatin1Char('\n')), 1);
        QVERIFY(result.err.endsWith(QStringLiteral("(see zentrik-cli notes --help)\n")));
    }

    void failedAddStoresNothing()
    {
        const Run result = run({ "notes", "add", audioFile() }, QString());
        QCOMPARE(result.exitCode, 1);
        QCOMPARE(result.err, QStringLiteral("zentrik-cli: API key is missing. Please add it in Settings.\n"));
        QVERIFY(VoiceNoteManager().notes().isEmpty());
    }

    void ambiguousIdAndUnreadableStore()
    {
        {
            VoiceNoteManager window;
            window.add({ "AB-1", "One", "x", QDateTime::currentDateTimeUtc() });
            window.add({ "AB-2", "Two", "y", QDateTime::currentDateTimeUtc() });
        }
        const Run ambiguous = run({ "notes", "show", "ab" });
        QCOMPARE(ambiguous.exitCode, 1);
        QCOMPARE(ambiguous.err, QStringLiteral("zentrik-cli: 'ab' is the start of 2 note ids; give more of the id\n"));

        Preferences().setData("voiceNotes", "{broken");
        const Run listed = run({ "notes", "list" });
        QCOMPARE(listed.exitCode, 0);
        QVERIFY2(
            listed.err.contains(QStringLiteral("kept unchanged under \"voiceNotesBackup\"")), qPrintable(listed.err));
        QCOMPARE(Preferences().data("voiceNotesBackup"), QByteArray("{broken"));
    }
};

ZENTRIK_TEST(TestVoiceCli)
#include "tst_voicecli.moc"
