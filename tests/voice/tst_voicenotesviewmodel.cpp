#include <QtTest>

#include <QDir>

#include "settings/preferences.h"
#include "support/environment.h"
#include "support/logcapture.h"
#include "support/providerfixture.h"
#include "support/testregistry.h"
#include "voice/voicenotesviewmodel.h"

using namespace zentrik;
using test::ProviderFixture;
using test::ScriptedReply;

namespace {

const QByteArray transcriptionPath = "/v1/audio/transcriptions";
const QByteArray fakeTranscript = R"({"text":"Remember the dentist at nine."})";

// A file where the recorder puts its recordings.
QString makeRecording(const QByteArray &bytes = "fake m4a bytes")
{
    QDir().mkpath(AudioRecorder::recordingsDirectory());
    const QString path = QDir(AudioRecorder::recordingsDirectory()).filePath(QStringLiteral("recording-test.m4a"));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        return {};
    }
    file.write(bytes);
    return path;
}

} // namespace

// The screen's workflow around a finished recording, and its editing, deleting and copying.
class TestVoiceNotesViewModel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void transcriptionBecomesANewNote()
    {
        ProviderFixture fixture;
        fixture.use(QStringLiteral("gpt-4o-mini"));
        fixture.fake->on("POST", transcriptionPath, ScriptedReply::json(fakeTranscript));
        VoiceNotesViewModel screen;
        screen.setApiManager(fixture.manager.get());
        screen.manager()->add(VoiceNote::create("Older", "before"));
        const QString path = makeRecording();
        QSignalSpy processing(&screen, &VoiceNotesViewModel::isProcessingChanged);
        test::LogCapture log;

        const QDateTime before = QDateTime::currentDateTimeUtc().addMSecs(-1);
        screen.processRecording(path);
        QVERIFY(screen.isProcessing());
        QVERIFY(!screen.canRecord());
        QTRY_VERIFY(!screen.isProcessing());
        QCOMPARE(processing.count(), 2);

        QCOMPARE(screen.noteCount(), 2);
        const VoiceNote note = screen.manager()->notes().first();
        QCOMPARE(note.title, QStringLiteral("New Voice Note"));
        QCOMPARE(note.transcription, QStringLiteral("Remember the dentist at nine."));
        QVERIFY(note.date >= before && note.date <= QDateTime::currentDateTimeUtc());
        QCOMPARE(
            screen.notes()->index(0).data(VoiceNoteListModel::TitleRole).toString(), QStringLiteral("New Voice Note"));
        QVERIFY(screen.errorMessage().isEmpty());
        QVERIFY(!QFile::exists(path)); // transcribed recordings are removed
        QVERIFY(log.has(QStringLiteral("Processing audio file at: ") + path));
        QVERIFY(log.has(QStringLiteral("Transcription received: Remember the dentist at nine.")));
        QCOMPARE(fixture.fake->requestCount(), 1);
        QCOMPARE(fixture.fake->lastRequest().path, transcriptionPath);
    }

    void failedTranscriptionAddsNoNote_data()
    {
        QTest::addColumn<QString>("scenario");
        QTest::addColumn<QString>("message");
        const auto row = [](const char *name, const QString &scenario, const QString &message) {
            QTest::newRow(name) << scenario << message;
        };
        row("no key", "no key", "API key is missing. Please add it in Settings.");
        row("service error", "401", "Invalid response received from the server.");
        row("connection lost", "truncated",
            "The network connection was lost. Please check your internet connection and try again.");
    }

    void failedTranscriptionAddsNoNote()
    {
        QFETCH(QString, scenario);
        QFETCH(QString, message);
        ProviderFixture fixture;
        fixture.use(QStringLiteral("gpt-4o-mini"), scenario == "no key" ? QString() : QStringLiteral("sk-openai"));
        if (scenario == "401") {
            fixture.fake->enqueue("POST", transcriptionPath,
                ScriptedReply::json(QByteArray(R"({"error":{"message":"Incorrect API key"}})"), 401));
        } else if (scenario == "html") {
            fixture.fake->enqueue("POST", transcriptionPath, ScriptedReply::json(QByteArray("<html>"), 502));
        } else if (scenario == "truncated") {
            fixture.fake->enqueue("POST", transcriptionPath, ScriptedReply::truncated(fakeTranscript, 4));
        }
        fixture.fake->on("POST", transcriptionPath, ScriptedReply::json(fakeTranscript));
        VoiceNotesViewModel screen;
        screen.setApiManager(fixture.manager.get());
        screen.manager()->add(VoiceNote::create("Kept", "as it was"));
        const QList<VoiceNote> notesBefore = screen.manager()->notes();
        const QString path = makeRecording();
        test::LogCapture log;

        screen.processRecording(path);
        QVERIFY(screen.isProcessing());
        QTRY_VERIFY(!screen.isProcessing());
        QCOMPARE(screen.manager()->notes(), notesBefore);
        QCOMPARE(screen.notes()->count(), 1);
        QVERIFY2(screen.errorMessage().startsWith(QStringLiteral("Transcription failed: ") + message),
            qPrintable(screen.errorMessage()));
        QCOMPARE(log.startingWith(QStringLiteral("Transcription failed: ") + message).size(), 1);
        QVERIFY(log.startingWith(QStringLiteral("Transcription received")).isEmpty());
        QVERIFY(QFile::exists(path)); // the user's words are not thrown away
        QVERIFY(screen.canRetry());

        if (scenario == "no key") {
            fixture.manager->overrideUserKeys(QStringLiteral("sk-openai"), {}, {});
        }
        screen.retryTranscription();
        QTRY_VERIFY(!screen.isProcessing());
        QCOMPARE(screen.noteCount(), 2);
        QCOMPARE(screen.manager()->notes().first().transcription, QStringLiteral("Remember the dentist at nine."));
        QVERIFY(!screen.canRetry());
        QVERIFY(screen.errorMessage().isEmpty());
        QVERIFY(!QFile::exists(path));
    }

    void recordingThatProducedNothing()
    {
        ProviderFixture fixture;
        fixture.use(QStringLiteral("gpt-4o-mini"));
        VoiceNotesViewModel screen;
        screen.setApiManager(fixture.manager.get());
        test::LogCapture log;
        screen.processRecording(QString());
        QVERIFY(!screen.isProcessing());
        QVERIFY(log.has(QStringLiteral("No audio URL returned")));
        QVERIFY(!screen.errorMessage().isEmpty());
        QCOMPARE(fixture.manager->httpClient().activeCallCount(), 0);
        QCOMPARE(screen.noteCount(), 0);
    }

    void filesOutsideTheRecordingsFolderAreLeftAlone()
    {
        ProviderFixture fixture;
        fixture.use(QStringLiteral("gpt-4o-mini"));
        fixture.fake->on("POST", transcriptionPath, ScriptedReply::json(fakeTranscript));
        QTemporaryDir elsewhere;
        const QString path = elsewhere.filePath(QStringLiteral("mine.m4a"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("audio");
        file.close();
        VoiceNotesViewModel screen;
        screen.setApiManager(fixture.manager.get());
        screen.processRecording(path);
        QTRY_COMPARE(screen.noteCount(), 1);
        QVERIFY(QFile::exists(path));
    }

    void editingKeepsIdDateAndPlace()
    {
        const test::ScopedConfigDir config;
        VoiceNotesViewModel screen;
        screen.manager()->add(VoiceNote::create("Second", "two"));
        screen.manager()->add(VoiceNote::create("First", "one"));
        const VoiceNote original = screen.manager()->notes().at(1);
        VoiceNoteEditor *editor = screen.editor();

        QVERIFY(!editor->open(QStringLiteral("no such id")));
        QVERIFY(!editor->isOpen());
        QVERIFY(editor->open(original.id));
        QCOMPARE(editor->title(), QStringLiteral("Second"));
        QCOMPARE(editor->transcription(), QStringLiteral("two"));
        editor->setTitle(QStringLiteral("Changed"));
        editor->cancel();
        QVERIFY(!editor->isOpen());
        QCOMPARE(screen.manager()->notes().at(1), original);

        QVERIFY(editor->open(original.id));
        editor->setTitle(QStringLiteral("   "));
        QVERIFY(!editor->canSave());
        QVERIFY(!editor->save());
        QVERIFY(editor->isOpen());
        editor->setTitle(QStringLiteral("Dentist"));
        editor->setTranscription(QStringLiteral("two, corrected"));
        QVERIFY(editor->canSave());
        QVERIFY(editor->save());
        QVERIFY(!editor->isOpen());

        const VoiceNote saved = VoiceNoteManager().notes().at(1);
        QCOMPARE(saved.id, original.id);
        QCOMPARE(saved.date, original.date);
        QCOMPARE(saved.title, QStringLiteral("Dentist"));
        QCOMPARE(saved.transcription, QStringLiteral("two, corrected"));
        QCOMPARE(screen.notes()->index(1).data(VoiceNoteListModel::TitleRole).toString(), QStringLiteral("Dentist"));
    }

    void deletingAsksFirst()
    {
        const test::ScopedConfigDir config;
        VoiceNotesViewModel screen;
        screen.manager()->add(VoiceNote::create("Keep", "k"));
        screen.manager()->add(VoiceNote::create("Remove", "r"));
        const QString id = screen.manager()->notes().first().id;

        screen.requestDelete(id);
        QVERIFY(screen.showDeleteConfirmation());
        QCOMPARE(screen.pendingDeleteTitle(), QStringLiteral("Remove"));
        screen.cancelDelete();
        QVERIFY(!screen.showDeleteConfirmation());
        QCOMPARE(screen.noteCount(), 2);

        QVERIFY(screen.editor()->open(id));
        screen.requestDelete(id);
        screen.confirmDelete();
        QVERIFY(!screen.showDeleteConfirmation());
        QVERIFY(!screen.editor()->isOpen());
        QCOMPARE(screen.noteCount(), 1);
        QCOMPARE(VoiceNoteManager().notes().first().title, QStringLiteral("Keep"));
    }

    void searchFiltersTheListOnly()
    {
        const test::ScopedConfigDir config;
        VoiceNotesViewModel screen;
        screen.manager()->add(VoiceNote::create("Groceries", "oat milk"));
        screen.manager()->add(VoiceNote::create("Meeting", "budget"));
        screen.setSearchText(QStringLiteral("MILK"));
        QCOMPARE(screen.notes()->count(), 1);
        QCOMPARE(screen.noteCount(), 2);
        // A new note that does not match stays out of the filtered list until the search is cleared.
        screen.manager()->add(VoiceNote::create("Call Anna", "about the trip"));
        QCOMPARE(screen.notes()->count(), 1);
        screen.setSearchText(QString());
        QCOMPARE(screen.notes()->count(), 3);
    }

    void unreadableStoreIsReported()
    {
        ProviderFixture fixture;
        Preferences().setData("voiceNotes", "garbage");
        VoiceNotesViewModel screen;
        QVERIFY2(screen.storageWarning().contains(QStringLiteral("\"voiceNotesBackup\"")),
            qPrintable(screen.storageWarning()));
        QCOMPARE(screen.noteCount(), 0);
    }
};

ZENTRIK_TEST(TestVoiceNotesViewModel)
#include "tst_voicenotesviewmodel.moc"
