#include <QtTest>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <QProcess>

#include <csignal>
#include <memory>

#include <sys/resource.h>
#include <unistd.h>

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

    // The program's own environment for a run in a process of its own: the key from the
    // environment and no secret store.
    static QProcessEnvironment processEnvironment()
    {
        QProcessEnvironment env;
        env.insert(QStringLiteral("OPENAI_API_KEY"), QStringLiteral("sk-cli"));
        env.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), QStringLiteral("unix:path=/nonexistent/zentrik-bus"));
        return env;
    }

    static QByteArray readAll(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    [[nodiscard]] QString configPath() const { return m_cli->dir.filePath(QStringLiteral("config")); }

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

    // A write that cannot be made fails with one line and exit 1, and leaves the store
    // byte for byte as it was, with no copy beside it.
    void failedWritesKeepTheStore_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<QString>("fault");
        // Every command writes through the same store; each fault is tried once. Adding as
        // another user would leave the recording unreadable to it too.
        QTest::newRow("add, full disk") << "add"
                                        << "full disk";
        QTest::newRow("edit, read-only file") << "edit"
                                              << "read-only file";
        QTest::newRow("delete, read-only folder") << "delete"
                                                  << "read-only folder";
        QTest::newRow("config, full disk") << "config"
                                           << "full disk";
    }

    void failedWritesKeepTheStore()
    {
        QFETCH(QString, command);
        QFETCH(QString, fault);
        QString firstId;
        {
            VoiceNoteManager window;
            for (int i = 0; i < 5; ++i) {
                QVERIFY(window.add(
                    VoiceNote::create(QStringLiteral("Note %1").arg(i), QString(5000, QLatin1Char('a' + i)))));
            }
            firstId = window.notes().first().id;
        }
        const QString audio = audioFile();
        const QString conf = Preferences().fileName();
        const QDir dir(configPath());
        const QStringList filesBefore = dir.entryList(QDir::Files | QDir::Hidden);
        const QByteArray before = readAll(conf);

        // Root writes through file modes; the modes are tried as another user.
        const bool asOtherUser = fault != QStringLiteral("full disk") && ::geteuid() == 0;
        if (asOtherUser) {
            for (const QString &path : { m_cli->dir.path(), configPath(), conf, audio }) {
                QVERIFY(::chown(QFile::encodeName(path).constData(), 65534, 65534) == 0);
            }
        }
        if (fault == QStringLiteral("read-only file")) {
            QVERIFY(QFile::setPermissions(conf, QFileDevice::ReadOwner | QFileDevice::ReadUser));
        } else if (fault == QStringLiteral("read-only folder")) {
            QVERIFY(QFile::setPermissions(configPath(), QFileDevice::Permissions(0x5500)));
        }

        QStringList arguments;
        if (command == QStringLiteral("add")) {
            arguments = { "notes", "add", audio };
        } else if (command == QStringLiteral("edit")) {
            arguments = { "notes", "edit", firstId, "--title", "Renamed" };
        } else if (command == QStringLiteral("delete")) {
            arguments = { "notes", "delete", firstId };
        } else {
            arguments = { "config", "set", "dark-mode", "true" };
        }
        const bool fullDisk = fault == QStringLiteral("full disk");
        const Run result = runCliProcess(arguments, {}, processEnvironment(), {}, [fullDisk, asOtherUser] {
            if (fullDisk) {
                std::signal(SIGXFSZ, SIG_IGN);
                const rlimit limit { 16384, 16384 };
                setrlimit(RLIMIT_FSIZE, &limit);
            }
            if (asOtherUser && (::setgid(65534) != 0 || ::setuid(65534) != 0)) {
                ::_exit(99);
            }
        });
        QFile::setPermissions(configPath(), QFileDevice::Permissions(0x7700));
        QCOMPARE(result.exitCode, 1);
        QCOMPARE(result.err.count(QLatin1Char('\n')), 1);
        QVERIFY2(result.err.startsWith(QStringLiteral("zentrik-cli: ")) && result.err.contains(conf),
            qPrintable(result.err));
        QCOMPARE(readAll(conf), before);
        QCOMPARE(dir.entryList(QDir::Files | QDir::Hidden), filesBefore);
    }

    // Twenty processes adding, editing and deleting notes at the same moment: every change
    // is kept.
    void parallelWritersLoseNothing()
    {
        QStringList seeded;
        {
            VoiceNoteManager window;
            for (int i = 0; i < 10; ++i) {
                QVERIFY(window.add(VoiceNote::create(QStringLiteral("Seed %1").arg(i), QStringLiteral("seed"))));
            }
            for (const VoiceNote &note : window.notes()) {
                seeded.append(note.id);
            }
        }
        const QString audio = audioFile();
        std::vector<std::unique_ptr<QProcess>> processes;
        const auto start = [&](const QStringList &arguments) {
            auto process = std::make_unique<QProcess>();
            QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
            env.insert(processEnvironment());
            process->setProcessEnvironment(env);
            process->start(QStringLiteral(ZENTRIK_CLI_PATH), arguments);
            processes.push_back(std::move(process));
        };
        for (int i = 0; i < 10; ++i) {
            start({ "notes", "add", audio });
        }
        for (int i = 0; i < 6; ++i) {
            start({ "notes", "edit", seeded.at(i), "--title", QStringLiteral("Edited %1").arg(i) });
        }
        for (int i = 6; i < 10; ++i) {
            start({ "notes", "delete", seeded.at(i) });
        }
        for (const auto &process : processes) {
            QVERIFY(process->waitForFinished(60000));
            QVERIFY2(process->exitCode() == 0, process->readAllStandardError().constData());
        }

        const QList<VoiceNote> notes = VoiceNoteManager().notes();
        int added = 0;
        int edited = 0;
        int deletedLeft = 0;
        for (const VoiceNote &note : notes) {
            added += note.transcription == QStringLiteral("Call Anna at five.") ? 1 : 0;
            const qsizetype seed = seeded.indexOf(note.id);
            if (seed >= 0 && seed < 6) {
                edited += note.title == QStringLiteral("Edited %1").arg(seed) ? 1 : 0;
            } else if (seed >= 6) {
                ++deletedLeft;
            }
        }
        qInfo("Of 20 parallel writers: %d of 10 adds, %d of 6 edits, %d of 4 deletes kept", added, edited,
            4 - deletedLeft);
        QCOMPARE(added, 10);
        QCOMPARE(edited, 6);
        QCOMPARE(deletedLeft, 0);
        QCOMPARE(notes.size(), 16);
    }
};

ZENTRIK_TEST(TestVoiceCli)
#include "tst_voicecli.moc"
