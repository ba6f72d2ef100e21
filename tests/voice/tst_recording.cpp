#include <QtTest>

#include <QAudioDevice>
#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMediaDevices>
#include <QProcess>
#include <QStandardPaths>

#include "support/environment.h"
#include "support/logcapture.h"
#include "support/providerfixture.h"
#include "support/testregistry.h"
#include "voice/audiorecorder.h"
#include "voice/voicenotesviewmodel.h"

using namespace zentrik;
using test::ProviderFixture;
using test::ScriptedReply;

namespace {

// The audio stream of a file as ffprobe sees it.
QJsonObject probeAudio(const QString &path, QString *problem)
{
    const QString ffprobe = QStandardPaths::findExecutable(QStringLiteral("ffprobe"));
    if (ffprobe.isEmpty()) {
        *problem = QStringLiteral("ffprobe is not installed (Debian package ffmpeg)");
        return {};
    }
    QProcess process;
    process.start(ffprobe,
        { "-v", "error", "-select_streams", "a:0", "-show_entries",
            "stream=codec_name,sample_rate,channels,duration:format=format_name", "-of", "json", path });
    if (!process.waitForFinished(20000) || process.exitCode() != 0) {
        *problem = QString::fromUtf8(process.readAllStandardError());
        return {};
    }
    const QJsonObject result = QJsonDocument::fromJson(process.readAllStandardOutput()).object();
    QJsonObject stream = result.value(QLatin1String("streams")).toArray().first().toObject();
    stream.insert(QStringLiteral("format_name"),
        result.value(QLatin1String("format")).toObject().value(QLatin1String("format_name")));
    return stream;
}

// The recording tests need a microphone: scripts/test starts PulseAudio with a virtual one
// that plays synthetic speech.
bool hasMicrophone()
{
    return !QMediaDevices::audioInputs().isEmpty();
}

} // namespace

// Real recordings from the (virtual) microphone.
class TestRecording : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void recordsAacStereoAt44100()
    {
        if (!hasMicrophone()) {
            QSKIP("No audio input exists here (scripts/test provides a virtual microphone)");
        }
        const test::ScopedConfigDir config;
        test::LogCapture log;
        AudioRecorder recorder;
        QVERIFY(recorder.microphoneAccessGranted());
        QSignalSpy finished(&recorder, &AudioRecorder::recordingFinished);
        QSignalSpy ticks(&recorder, &AudioRecorder::recordingTimeChanged);

        QVERIFY(recorder.start());
        QVERIFY(recorder.isStarting());
        QVERIFY(!recorder.isRecording());
        QVERIFY(!recorder.start()); // one recording at a time
        QTRY_VERIFY_WITH_TIMEOUT(recorder.isRecording(), AudioRecorder::startTimeoutMs);
        QVERIFY(!recorder.isStarting());
        QTest::qWait(2000); // the length of the recording, not a wait for anything
        QVERIFY2(ticks.count() >= 10, qPrintable(QString::number(ticks.count())));
        QVERIFY(recorder.recordingTime() >= 1.8 && recorder.recordingTime() < 3.0);
        recorder.stop();
        QVERIFY(!recorder.isRecording());
        QTRY_COMPARE_WITH_TIMEOUT(finished.count(), 1, 15000);

        const QString path = finished.first().first().toString();
        QVERIFY2(path.endsWith(QStringLiteral(".m4a")), qPrintable(path));
        QCOMPARE(QFileInfo(path).absolutePath(), QDir(AudioRecorder::recordingsDirectory()).absolutePath());
        QVERIFY(log.has(QStringLiteral("Recording started at: ") + path));
        QVERIFY(log.has(QStringLiteral("Recording stopped. File size: ") + QString::number(QFileInfo(path).size())));

        QString problem;
        const QJsonObject audio = probeAudio(path, &problem);
        QVERIFY2(!audio.isEmpty(), qPrintable(problem));
        QCOMPARE(audio.value(QLatin1String("codec_name")).toString(), QStringLiteral("aac"));
        QCOMPARE(audio.value(QLatin1String("sample_rate")).toString(), QStringLiteral("44100"));
        QCOMPARE(audio.value(QLatin1String("channels")).toInt(), 2);
        QVERIFY2(audio.value(QLatin1String("format_name")).toString().contains(QStringLiteral("m4a")),
            qPrintable(audio.value(QLatin1String("format_name")).toString()));
        const double seconds = audio.value(QLatin1String("duration")).toString().toDouble();
        QVERIFY2(seconds > 1.5 && seconds < 3.0, qPrintable(QString::number(seconds)));
    }

    void recordStopTranscribeAddsANote()
    {
        if (!hasMicrophone()) {
            QSKIP("No audio input exists here (scripts/test provides a virtual microphone)");
        }
        ProviderFixture fixture;
        fixture.use(QStringLiteral("gpt-4o-mini"));
        fixture.fake->on("POST", "/v1/audio/transcriptions",
            ScriptedReply::json(QByteArray(R"({"text":"Hello, this is a voice note."})")));
        VoiceNotesViewModel screen;
        screen.setApiManager(fixture.manager.get());
        QVERIFY(screen.microphoneAvailable());
        QVERIFY(screen.canRecord());

        screen.toggleRecording();
        QVERIFY(screen.isStarting());
        QTRY_VERIFY_WITH_TIMEOUT(screen.isRecording(), AudioRecorder::startTimeoutMs);
        QTest::qWait(2000); // the length of the recording
        screen.toggleRecording();
        QVERIFY(!screen.isRecording());
        QCOMPARE(screen.recordingTimeText(), QStringLiteral("0:02"));
        QVERIFY(screen.isProcessing());
        QTRY_COMPARE_WITH_TIMEOUT(screen.noteCount(), 1, 20000);
        QVERIFY(!screen.isProcessing());
        QVERIFY2(screen.errorMessage().isEmpty(), qPrintable(screen.errorMessage()));

        const VoiceNote note = screen.manager()->notes().first();
        QCOMPARE(note.title, QStringLiteral("New Voice Note"));
        QCOMPARE(note.transcription, QStringLiteral("Hello, this is a voice note."));
        // Two seconds of AAC went out (the form's own text is a few hundred bytes).
        const test::RecordedRequest request = fixture.fake->lastRequest();
        QCOMPARE(request.path, QByteArray("/v1/audio/transcriptions"));
        QVERIFY(request.header("Content-Type").startsWith("multipart/form-data; boundary="));
        QVERIFY2(request.header("Content-Length").toLongLong() > 10000, request.header("Content-Length"));
        // The recording was removed once transcribed.
        QVERIFY(QDir(AudioRecorder::recordingsDirectory()).entryList(QDir::Files).isEmpty());
    }
};

ZENTRIK_TEST(TestRecording)
#include "tst_recording.moc"
