#include "settings/preferences.h"
#include "support/childtest.h"
#include "support/testregistry.h"

#include <QTemporaryDir>
#include <QtTest>

#include <csignal>

#include <sys/resource.h>

using namespace zentrik;

class PreferencesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        QVERIFY(m_dir->isValid());
        qputenv("ZENTRIK_CONFIG_DIR", m_dir->path().toUtf8());
    }

    void cleanup() { qunsetenv("ZENTRIK_CONFIG_DIR"); }

    void configDirMovesEveryFile()
    {
        Preferences preferences;
        preferences.setString(QStringLiteral("selectedTextModel"), QStringLiteral("gpt-4-turbo"));
        QVERIFY(preferences.fileName().startsWith(m_dir->path()));
        QVERIFY(QFile::exists(preferences.fileName()));
        QVERIFY(Preferences::dataDirectory().startsWith(m_dir->path()));
    }

    // Values written by one instance are seen by a later one, as after a restart.
    void valuesSurviveANewInstance_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QByteArray>("data");
        QTest::newRow("non-ascii and separators")
            << QStringLiteral("PixArt-Σ / ünïcode = ; ,") << QByteArray("[{\"a\":\"ü\"}]");
        QTest::newRow("binary data") << QStringLiteral("x") << QByteArray("\x00\x01\x02\xff", 4);
    }

    void valuesSurviveANewInstance()
    {
        QFETCH(QString, text);
        QFETCH(QByteArray, data);
        {
            Preferences writer;
            writer.setString(QStringLiteral("text"), text);
            writer.setBoolean(QStringLiteral("isDarkMode"), true);
            writer.setData(QStringLiteral("voiceNotes"), data);
        }
        Preferences reader;
        QCOMPARE(reader.string(QStringLiteral("text")), text);
        QCOMPARE(reader.boolean(QStringLiteral("isDarkMode")), true);
        QCOMPARE(reader.data(QStringLiteral("voiceNotes")), data);
        reader.remove(QStringLiteral("text"));
        QVERIFY(!Preferences().contains(QStringLiteral("text")));
    }

    void twoLiveInstancesAgree()
    {
        Preferences first;
        Preferences second;
        first.setString(QStringLiteral("selectedImageModel"), QStringLiteral("DALL-E"));
        QCOMPARE(second.string(QStringLiteral("selectedImageModel")), QStringLiteral("DALL-E"));
    }

    // The folder and the file hold transcripts: nobody else may read them, whatever the
    // umask and whatever the modes were before.
    void folderAndFileArePrivate()
    {
        const QString folder = m_dir->path() + QStringLiteral("/zentrik");
        qputenv("ZENTRIK_CONFIG_DIR", folder.toUtf8());
        QVERIFY(QDir().mkpath(folder));
        QFile::setPermissions(folder, QFileDevice::Permissions(0x7755));
        Preferences preferences;
        QVERIFY(preferences.setString(QStringLiteral("selectedTextModel"), QStringLiteral("gpt-4o")));
        QCOMPARE(QFileInfo(folder).permissions() & QFileDevice::Permissions(0x0777), QFileDevice::Permissions(0x0700));
        QCOMPARE(QFileInfo(preferences.fileName()).permissions() & QFileDevice::Permissions(0x0777),
            QFileDevice::Permissions(0x0600));
    }

    // Copies left by a write that was killed go at the next write; other files stay.
    void copiesOfAKilledWriteAreRemoved()
    {
        Preferences preferences;
        QVERIFY(preferences.setString(QStringLiteral("a"), QStringLiteral("1")));
        const QDir dir(m_dir->path());
        const QStringList leftovers { QStringLiteral("Zentrik.conf.write-4242-0.w"),
            QStringLiteral("Zentrik.conf.write-4242-0.c"), QStringLiteral("Zentrik.conf.write-4242-1.w.Xy12Ab") };
        for (const QString &name : leftovers + QStringList { QStringLiteral("Zentrik.conf.bak") }) {
            QFile file(dir.filePath(name));
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write("half a file");
        }
        QVERIFY(preferences.setString(QStringLiteral("a"), QStringLiteral("2")));
        for (const QString &name : leftovers) {
            QVERIFY2(!dir.exists(name), qPrintable(name));
        }
        QVERIFY(dir.exists(QStringLiteral("Zentrik.conf.bak")));
        QCOMPARE(Preferences().string(QStringLiteral("a")), QStringLiteral("2"));
    }

    // A declined update writes nothing and reports no error; an accepted one sees the values
    // stored by another instance since.
    void updateStartsFromTheStoredValues()
    {
        Preferences first;
        Preferences second;
        QVERIFY(first.setString(QStringLiteral("a"), QStringLiteral("1")));
        QVERIFY(second.setString(QStringLiteral("b"), QStringLiteral("2")));
        const QByteArray before = readAll(first.fileName());
        QVERIFY(!first.update([](QVariantMap &values) {
            values.clear();
            return false;
        }));
        QVERIFY(first.errorString().isEmpty());
        QCOMPARE(readAll(first.fileName()), before);
        QVERIFY(first.update([](QVariantMap &values) {
            values.insert(QStringLiteral("c"),
                values.value(QStringLiteral("a")).toString() + values.value(QStringLiteral("b")).toString());
            return true;
        }));
        QCOMPARE(second.string(QStringLiteral("c")), QStringLiteral("12"));
    }

    // A file limit below the new file's size (a full disk): the write fails with a reason,
    // and the stored file stays byte for byte, with no copy left behind.
    void fullDiskLeavesTheFileAsItWas()
    {
        {
            Preferences preferences;
            QVERIFY(preferences.setData(QStringLiteral("voiceNotes"), QByteArray(20000, 'n')));
        }
        const QString file = Preferences().fileName();
        const QByteArray before = readAll(file);
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("ZENTRIK_CONFIG_DIR"), m_dir->path());
        const test::ChildRun run = test::runTestClassInChild(QStringLiteral("PreferencesFullDiskChild"), env);
        QVERIFY2(run.finished && run.exitCode == 0, run.output.constData());
        QVERIFY2(run.output.contains("PASS   : PreferencesFullDiskChild::writesFail()"), run.output.constData());
        QCOMPARE(readAll(file), before);
        QCOMPARE(
            QDir(m_dir->path()).entryList(QDir::Files | QDir::Hidden), QStringList { QStringLiteral("Zentrik.conf") });
    }

    // A writer killed at any moment leaves either the old file or the new one, whole.
    void killedWriterLeavesAWholeFile()
    {
        {
            Preferences preferences;
            QVERIFY(preferences.setData(QStringLiteral("voiceNotes"), QByteArray(1000, 'o')));
        }
        const QString file = Preferences().fileName();
        for (int round = 0; round < 5; ++round) {
            QProcess child;
            QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
            env.insert(QStringLiteral("ZENTRIK_CONFIG_DIR"), m_dir->path());
            child.setProcessEnvironment(env);
            child.start(QCoreApplication::applicationFilePath(),
                { QStringLiteral("-class"), QStringLiteral("PreferencesBusyWriterChild") });
            QVERIFY(child.waitForStarted());
            QTest::qWait(150 + 40 * round); // killed at another moment of its writing each round
            child.kill();
            child.waitForFinished();
            Preferences reader;
            const QByteArray notes = reader.data(QStringLiteral("voiceNotes"));
            QVERIFY2(notes == QByteArray(1000, 'o') || notes == QByteArray(4000000, 'w'),
                qPrintable(QString::number(notes.size())));
            QVERIFY(reader.setString(QStringLiteral("after"), QString::number(round)));
            QCOMPARE(QDir(m_dir->path()).entryList(QDir::Files | QDir::Hidden),
                QStringList { QStringLiteral("Zentrik.conf") });
            QVERIFY(reader.setData(QStringLiteral("voiceNotes"), QByteArray(1000, 'o')));
        }
        Q_UNUSED(file);
    }

private:
    static QByteArray readAll(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    std::unique_ptr<QTemporaryDir> m_dir;
};
ZENTRIK_TEST(PreferencesTest)

// The child half of fullDiskLeavesTheFileAsItWas: every write exceeds the file size limit.
class PreferencesFullDiskChild : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit { 8192, 8192 };
        QCOMPARE(setrlimit(RLIMIT_FSIZE, &limit), 0);
    }

    void writesFail()
    {
        Preferences preferences;
        QVERIFY(!preferences.setString(QStringLiteral("selectedTextModel"), QStringLiteral("gpt-4o")));
        QVERIFY2(preferences.errorString().contains(preferences.fileName()), qPrintable(preferences.errorString()));
        QVERIFY(!preferences.setData(QStringLiteral("voiceNotes"), QByteArray(30000, 'x')));
        QCOMPARE(preferences.data(QStringLiteral("voiceNotes")), QByteArray(20000, 'n'));
    }
};
ZENTRIK_CHILD_TEST(PreferencesFullDiskChild)

// Writes a large value over and over until it is killed.
class PreferencesBusyWriterChild : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void writeUntilKilled()
    {
        Preferences preferences;
        const QByteArray big(4000000, 'w');
        for (;;) {
            QVERIFY(preferences.setData(QStringLiteral("voiceNotes"), big));
        }
    }
};
ZENTRIK_CHILD_TEST(PreferencesBusyWriterChild)

#include "tst_preferences.moc"
