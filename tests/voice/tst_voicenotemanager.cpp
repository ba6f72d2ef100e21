#include <QtTest>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "settings/preferences.h"
#include "support/environment.h"
#include "support/logcapture.h"
#include "support/testregistry.h"
#include "voice/voicenotemanager.h"

using namespace zentrik;

namespace {

VoiceNote note(const QString &id, const QString &title, const QString &transcription, const QDateTime &date)
{
    return { id, title, transcription, date };
}

QStringList titles(const QList<VoiceNote> &notes)
{
    QStringList result;
    for (const VoiceNote &note : notes) {
        result.append(note.title);
    }
    return result;
}

const QByteArray goodNote
    = R"({"id":"A1","title":"Groceries","transcription":"Buy milk","date":"2024-03-01T09:15:30.250Z"})";

} // namespace

// The note store: order, edits, search, persistence and what happens to a list that
// cannot be read.
class TestVoiceNoteManager : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void notesSurviveANewManager()
    {
        const test::ScopedConfigDir config;
        const QDateTime berlin(QDate(2024, 5, 2), QTime(18, 30, 5, 123), QTimeZone("Europe/Berlin"));
        {
            VoiceNoteManager manager;
            QVERIFY(manager.notes().isEmpty());
            manager.add(
                note("first", "Oldest", "one", QDateTime(QDate(2023, 12, 31), QTime(23, 59, 59, 999), Qt::UTC)));
            manager.add(note("second", "Middle", "two\nlines", berlin));
            manager.add(VoiceNote::create("Newest", QString::fromUtf8("drei 😀")));
            QCOMPARE(titles(manager.notes()), QStringList({ "Newest", "Middle", "Oldest" }));
        }
        VoiceNoteManager manager;
        VoiceNoteManager other;
        QCOMPARE(titles(manager.notes()), QStringList({ "Newest", "Middle", "Oldest" }));
        QCOMPARE(manager.notes(), other.notes());
        const VoiceNote &middle = manager.notes().at(1);
        QCOMPARE(middle.id, QStringLiteral("second"));
        QCOMPARE(middle.transcription, QStringLiteral("two\nlines"));
        QCOMPARE(middle.date, berlin);
        QCOMPARE(middle.date.toMSecsSinceEpoch(), berlin.toMSecsSinceEpoch());
        QCOMPARE(manager.notes().at(0).transcription, QString::fromUtf8("drei 😀"));
        QCOMPARE(manager.notes().at(0).id.size(), 36);
        QVERIFY(manager.unreadableBackupKey().isEmpty());

        // Stored under "voiceNotes" as a JSON array of records with the four keys.
        Preferences preferences;
        const QJsonArray stored = QJsonDocument::fromJson(preferences.data("voiceNotes")).array();
        QCOMPARE(stored.size(), 3);
        QCOMPARE(stored.at(2).toObject().keys(), QStringList({ "date", "id", "title", "transcription" }));
    }

    void replaceAndRemoveById()
    {
        const test::ScopedConfigDir config;
        VoiceNoteManager manager;
        const QDateTime date = QDateTime::currentDateTimeUtc().addDays(-3);
        manager.add(note("a", "A", "alpha", date));
        manager.add(note("b", "B", "beta", date));
        manager.add(note("c", "C", "gamma", date));
        QSignalSpy changed(&manager, &VoiceNoteManager::notesChanged);

        QVERIFY(manager.replace(note("b", "B edited", "beta edited", date)));
        QCOMPARE(titles(manager.notes()), QStringList({ "C", "B edited", "A" }));
        QVERIFY(!manager.replace(note("zzz", "Ghost", "", date)));
        QVERIFY(manager.remove("c"));
        QVERIFY(!manager.remove("c"));
        QCOMPARE(titles(manager.notes()), QStringList({ "B edited", "A" }));
        QCOMPARE(changed.count(), 2);
        QCOMPARE(titles(VoiceNoteManager().notes()), QStringList({ "B edited", "A" }));
    }

    void search_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("found");
        QTest::newRow("empty") << "" << QStringList({ "Team Meeting", "Groceries", QString::fromUtf8("Überraschung") });
        QTest::newRow("title, other case") << "MEETING" << QStringList({ "Team Meeting" });
        QTest::newRow("transcription") << "milk" << QStringList({ "Groceries" });
        QTest::newRow("across words") << "buy oat" << QStringList({ "Groceries" });
        QTest::newRow("non-ASCII case") << QString::fromUtf8("üBER")
                                        << QStringList({ QString::fromUtf8("Überraschung") });
        QTest::newRow("nothing") << "zebra" << QStringList();
    }

    void search()
    {
        QFETCH(QString, text);
        QFETCH(QStringList, found);
        const test::ScopedConfigDir config;
        VoiceNoteManager manager;
        const QDateTime date = QDateTime::currentDateTimeUtc();
        manager.add(note("3", QString::fromUtf8("Überraschung"), "Party for Anne", date));
        manager.add(note("2", "Groceries", "Buy oat milk and bread", date));
        manager.add(note("1", "Team Meeting", "Agenda: budget", date));
        QCOMPARE(titles(manager.search(text)), found);
    }

    void unreadableListIsKeptAside_data()
    {
        QTest::addColumn<QByteArray>("stored");
        QTest::addColumn<QStringList>("readable");

        QTest::newRow("not JSON") << QByteArray("{{{ not json") << QStringList();
        QTest::newRow("object instead of list") << QByteArray(R"({"notes":[]})") << QStringList();
        QTest::newRow("note without date")
            << QByteArray(R"([{"id":"1","title":"t","transcription":"x"}])") << QStringList();
        QTest::newRow("one bad note among good ones") << QByteArray(
            "[" + goodNote + R"(,{"id":7,"title":"t","transcription":"x","date":"2024-01-01T00:00:00Z"}])")
                                                      << QStringList({ "Groceries" });
    }

    void unreadableListIsKeptAside()
    {
        QFETCH(QByteArray, stored);
        QFETCH(QStringList, readable);
        const test::ScopedConfigDir config;
        Preferences preferences;
        preferences.setData("voiceNotes", stored);

        test::LogCapture log;
        VoiceNoteManager manager;
        QCOMPARE(log.startingWith("The stored voice notes could not be read").size(), 1);
        QCOMPARE(titles(manager.notes()), readable);
        QCOMPARE(manager.unreadableBackupKey(), QStringLiteral("voiceNotesBackup"));
        QCOMPARE(preferences.data("voiceNotesBackup"), stored);
        QCOMPARE(preferences.data("voiceNotes"), stored); // nothing written before a change

        // Opening again finds the same list and the same backup, and makes no second copy.
        QCOMPARE(VoiceNoteManager().unreadableBackupKey(), QStringLiteral("voiceNotesBackup"));
        QVERIFY(!preferences.contains("voiceNotesBackup2"));

        manager.add(VoiceNote::create("New Voice Note", "after"));
        QCOMPARE(preferences.data("voiceNotesBackup"), stored);
        VoiceNoteManager reopened;
        QCOMPARE(titles(reopened.notes()), QStringList({ "New Voice Note" }) + readable);
        QVERIFY(reopened.unreadableBackupKey().isEmpty());
    }

    void aLaterBreakageNeverReplacesABackup()
    {
        const test::ScopedConfigDir config;
        Preferences preferences;
        preferences.setData("voiceNotes", "first broken list");
        VoiceNoteManager first;
        first.add(VoiceNote::create("Kept", "x"));
        preferences.setData("voiceNotes", "second broken list");

        VoiceNoteManager second;
        QCOMPARE(second.unreadableBackupKey(), QStringLiteral("voiceNotesBackup2"));
        QCOMPARE(preferences.data("voiceNotesBackup"), QByteArray("first broken list"));
        QCOMPARE(preferences.data("voiceNotesBackup2"), QByteArray("second broken list"));
        // The first manager notices too when it next changes the list.
        QSignalSpy firstFound(&first, &VoiceNoteManager::unreadableNotesFound);
        first.add(VoiceNote::create("Later", "y"));
        QCOMPARE(firstFound.count(), 1);
        QCOMPARE(firstFound.first().first().toString(), QStringLiteral("voiceNotesBackup2"));
        QVERIFY(!preferences.contains("voiceNotesBackup3"));
    }

    void changesMadeElsewhereAreNotLost()
    {
        const test::ScopedConfigDir config;
        VoiceNoteManager window;
        VoiceNoteManager commandLine;
        window.add(VoiceNote::create("From the window", "a"));
        commandLine.add(VoiceNote::create("From the command line", "b"));
        const QString windowNoteId = window.notes().first().id;
        QVERIFY(window.replace({ windowNoteId, "Renamed", "a", window.notes().first().date }));
        QCOMPARE(titles(window.notes()), QStringList({ "From the command line", "Renamed" }));
        QCOMPARE(titles(VoiceNoteManager().notes()), QStringList({ "From the command line", "Renamed" }));
    }
};

ZENTRIK_TEST(TestVoiceNoteManager)
#include "tst_voicenotemanager.moc"
