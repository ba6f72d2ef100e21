#include "voice/audiorecorder.h"

#include "settings/preferences.h"
#include "voice/voicelogging.h"

#include <QAudioDevice>
#include <QAudioInput>
#include <QCoreApplication>
#include <QDateTime>
#include <QDebug>
#include <QDir>
#include <QFileInfo>
#include <QMediaCaptureSession>
#include <QMediaDevices>
#include <QMediaFormat>
#include <QMediaRecorder>
#include <QTimer>
#include <QUrl>

namespace zentrik {

namespace {

QString newRecordingPath(const QDir &directory)
{
    const QString stem
        = QStringLiteral("recording-") + QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmmss-zzz"));
    QString path = directory.filePath(stem + QStringLiteral(".m4a"));
    for (int number = 2; QFileInfo::exists(path); ++number) {
        path = directory.filePath(QStringLiteral("%1-%2.m4a").arg(stem).arg(number));
    }
    return path;
}

} // namespace

// Everything one recording needs; it all goes once the recording is over.
struct AudioRecorder::Capture
{
    // Parent of the capture objects. Deleted later, never inside one of their signals.
    QObject *owner = new QObject;
    QMediaCaptureSession *session = nullptr;
    QAudioInput *input = nullptr;
    QMediaRecorder *recorder = nullptr;
    // Guards the slow steps: opening the microphone and finishing the file.
    QTimer *watchdog = nullptr;
    QString path;
    Stage stage = Stage::starting;
    int attempt = 1;
    bool insideRecord = true;
    // An error reported from inside record(), before start() returned.
    QString startError;
};

AudioRecorder::AudioRecorder(QObject *parent)
    : QObject(parent)
{
    m_devices = new QMediaDevices(this);
    connect(m_devices, &QMediaDevices::audioInputsChanged, this, &AudioRecorder::updateMicrophoneAccess);
    updateMicrophoneAccess();
}

AudioRecorder::~AudioRecorder()
{
    if (m_capture) {
        // Closing the program mid-recording still finishes the file as far as it goes.
        m_capture->recorder->disconnect(this);
        m_capture->recorder->stop();
        delete m_capture->owner;
    }
}

QString AudioRecorder::recordingsDirectory()
{
    return QDir(Preferences::dataDirectory()).filePath(QStringLiteral("recordings"));
}

bool AudioRecorder::isRecording() const
{
    return m_capture && m_capture->stage == Stage::recording;
}

bool AudioRecorder::isStarting() const
{
    return m_capture && m_capture->stage == Stage::starting;
}

bool AudioRecorder::isFinishing() const
{
    return m_capture && (m_capture->stage == Stage::finishing || m_capture->stage == Stage::abandoning);
}

void AudioRecorder::updateMicrophoneAccess()
{
    const bool granted = !QMediaDevices::audioInputs().isEmpty();
    if (granted == m_microphoneAccessGranted) {
        return;
    }
    m_microphoneAccessGranted = granted;
    Q_EMIT microphoneAccessGrantedChanged();
}

bool AudioRecorder::canWriteAac()
{
    QMediaFormat format(QMediaFormat::Mpeg4Audio); // the query is not const
    return format.supportedAudioCodecs(QMediaFormat::Encode).contains(QMediaFormat::AudioCodec::AAC);
}

bool AudioRecorder::start()
{
    updateMicrophoneAccess();
    if (!m_microphoneAccessGranted) {
        qInfo().noquote() << "Microphone access not granted";
        return false;
    }
    const auto refuse = [this](const QString &description) {
        qInfo().noquote() << "Failed to start recording: " + description;
        Q_EMIT recordingFailed(description);
        return false;
    };
    if (m_capture) {
        return refuse(tr("The previous recording is not finished yet."));
    }
    if (!canWriteAac()) {
        // Without an AAC encoder the media backend would quietly pick another codec, and
        // without its muxer or audio source it may never start at all.
        return refuse(tr("This system cannot write AAC audio to an MPEG-4 file. Install GStreamer's base, good, "
                         "bad and PulseAudio plugins, or start Zentrik with QT_MEDIA_BACKEND=ffmpeg."));
    }
    const QDir directory(recordingsDirectory());
    if (!directory.mkpath(QStringLiteral("."))) {
        return refuse(tr("Cannot create the folder %1").arg(directory.path()));
    }

    const Flags before = flags();
    QString problem;
    if (!openCapture(1, &problem)) {
        return refuse(problem);
    }
    announceChanges(before);
    return true;
}

bool AudioRecorder::openCapture(int attempt, QString *problem)
{
    m_capture = std::make_unique<Capture>();
    Capture &capture = *m_capture;
    capture.attempt = attempt;
    capture.path = newRecordingPath(QDir(recordingsDirectory()));
    capture.session = new QMediaCaptureSession(capture.owner);
    capture.input = new QAudioInput(QMediaDevices::defaultAudioInput(), capture.owner);
    capture.recorder = new QMediaRecorder(capture.owner);
    capture.session->setAudioInput(capture.input);
    capture.session->setRecorder(capture.recorder);

    QMediaFormat format(QMediaFormat::Mpeg4Audio);
    format.setAudioCodec(QMediaFormat::AudioCodec::AAC);
    capture.recorder->setMediaFormat(format);
    capture.recorder->setAudioSampleRate(sampleRate);
    capture.recorder->setAudioChannelCount(channelCount);
    capture.recorder->setQuality(QMediaRecorder::HighQuality);
    capture.recorder->setOutputLocation(QUrl::fromLocalFile(capture.path));

    connect(capture.recorder, &QMediaRecorder::errorOccurred, this,
        [this](QMediaRecorder::Error, const QString &description) { onRecorderError(description); });
    connect(capture.recorder, &QMediaRecorder::recorderStateChanged, this, [this](QMediaRecorder::RecorderState state) {
        if (state == QMediaRecorder::StoppedState) {
            onRecorderStopped();
        }
    });
    connect(capture.recorder, &QMediaRecorder::durationChanged, this, [this](qint64 milliseconds) {
        if (milliseconds > 0) {
            onSoundArrived();
        }
    });
    capture.watchdog = new QTimer(capture.owner);
    capture.watchdog->setSingleShot(true);
    connect(capture.watchdog, &QTimer::timeout, this, [this] {
        if (isStarting() && m_capture->attempt < startAttempts) {
            retryStart();
            return;
        }
        onRecorderError(
            isStarting() ? tr("No sound arrived from the microphone.") : tr("The recording was not finished in time."));
    });

    capture.recorder->record();
    capture.insideRecord = false;
    if (!capture.startError.isEmpty() || capture.recorder->error() != QMediaRecorder::NoError) {
        *problem = capture.startError.isEmpty() ? capture.recorder->errorString() : capture.startError;
        releaseCapture(DiscardFile::remove);
        return false;
    }
    capture.watchdog->start(attemptTimeoutMs);
    return true;
}

void AudioRecorder::retryStart()
{
    const int attempt = m_capture->attempt + 1;
    qCInfo(lcVoice).noquote() << QStringLiteral(
        "No sound from the microphone after %1 ms; opening it again (attempt %2 of %3)")
                                     .arg(attemptTimeoutMs)
                                     .arg(attempt)
                                     .arg(startAttempts);
    const Flags before = flags();
    releaseCapture(DiscardFile::remove);
    QString problem;
    if (!openCapture(attempt, &problem)) {
        qInfo().noquote() << "Failed to start recording: " + problem;
        announceChanges(before);
        Q_EMIT recordingFailed(problem);
    }
}

void AudioRecorder::onSoundArrived()
{
    if (!m_capture || m_capture->stage != Stage::starting) {
        return;
    }
    m_capture->watchdog->stop();
    setStage(*m_capture, Stage::recording);
    setRecordingTime(0);
    m_timer = new QTimer(this);
    m_timer->setInterval(timerIntervalMs);
    connect(m_timer, &QTimer::timeout, this, [this] { setRecordingTime(double(m_clock.elapsed()) / 1000.0); });
    m_clock.start();
    m_timer->start();
    qInfo().noquote() << "Recording started at: " + m_capture->path;
}

void AudioRecorder::stop()
{
    if (!m_capture || (m_capture->stage != Stage::recording && m_capture->stage != Stage::starting)) {
        return;
    }
    if (m_capture->stage == Stage::recording) {
        setRecordingTime(double(m_clock.elapsed()) / 1000.0);
        delete m_timer;
        m_timer = nullptr;
        setStage(*m_capture, Stage::finishing);
    } else {
        setStage(*m_capture, Stage::abandoning);
    }
    m_capture->watchdog->start(finishTimeoutMs);
    m_capture->recorder->stop();
}

void AudioRecorder::onRecorderStopped()
{
    if (!m_capture) {
        return;
    }
    const Stage stage = m_capture->stage;
    QString path = m_capture->recorder->actualLocation().toLocalFile();
    if (path.isEmpty()) {
        path = m_capture->path;
    }
    if (stage == Stage::abandoning) {
        discardCapture(DiscardFile::remove);
        return;
    }
    if (stage != Stage::finishing) {
        // The recorder stopped of its own accord; the error that made it is reported there.
        return;
    }
    const QFileInfo file(path);
    qInfo().noquote() << "Recording stopped. File size: " + QString::number(file.exists() ? file.size() : 0);
    discardCapture(DiscardFile::keep);
    Q_EMIT recordingFinished(file.exists() && file.size() > 0 ? path : QString());
}

void AudioRecorder::onRecorderError(const QString &description)
{
    if (!m_capture) {
        return;
    }
    const QString path = m_capture->path;
    switch (m_capture->stage) {
    case Stage::starting:
        if (m_capture->insideRecord) {
            m_capture->startError = description; // start() reports it once record() returns
            return;
        }
        qInfo().noquote() << "Failed to start recording: " + description;
        discardCapture(DiscardFile::remove);
        Q_EMIT recordingFailed(description);
        return;
    case Stage::recording:
        qCWarning(lcVoice).noquote() << "Recording failed:" << description;
        qCInfo(lcVoice).noquote() << "What was recorded stays at" << path;
        delete m_timer;
        m_timer = nullptr;
        discardCapture(DiscardFile::keep);
        Q_EMIT recordingFailed(description);
        return;
    case Stage::abandoning:
        discardCapture(DiscardFile::remove);
        return;
    case Stage::finishing:
        qCWarning(lcVoice).noquote() << "Finishing the recording failed:" << description;
        qCInfo(lcVoice).noquote() << "What was recorded stays at" << path;
        discardCapture(DiscardFile::keep);
        Q_EMIT recordingFinished(QString());
        return;
    }
}

AudioRecorder::Flags AudioRecorder::flags() const
{
    return { isRecording(), isStarting(), isFinishing() };
}

void AudioRecorder::announceChanges(const Flags &before)
{
    const Flags now = flags();
    if (now.recording != before.recording) {
        Q_EMIT isRecordingChanged();
    }
    if (now.starting != before.starting) {
        Q_EMIT isStartingChanged();
    }
    if (now.finishing != before.finishing) {
        Q_EMIT isFinishingChanged();
    }
}

void AudioRecorder::setStage(Capture &capture, Stage stage)
{
    const Flags before = flags();
    capture.stage = stage;
    announceChanges(before);
}

void AudioRecorder::discardCapture(DiscardFile file)
{
    if (!m_capture) {
        return;
    }
    const Flags before = flags();
    releaseCapture(file);
    announceChanges(before);
}

void AudioRecorder::releaseCapture(DiscardFile file)
{
    if (!m_capture) {
        return;
    }
    std::unique_ptr<Capture> capture = std::move(m_capture);
    capture->recorder->disconnect(this);
    capture->watchdog->stop();
    if (file == DiscardFile::remove) {
        // Only once the recorder is gone: it may still be writing.
        connect(capture->recorder, &QObject::destroyed, [path = capture->path] { QFile::remove(path); });
        capture->recorder->stop();
    }
    // The recorder may be the sender of the signal being handled: let it return first.
    capture->owner->deleteLater();
}

void AudioRecorder::setRecordingTime(double seconds)
{
    if (qFuzzyCompare(seconds + 1, m_recordingTime + 1)) {
        return;
    }
    m_recordingTime = seconds;
    Q_EMIT recordingTimeChanged();
}

} // namespace zentrik
