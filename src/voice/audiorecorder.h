#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QString>

#include <memory>

class QMediaDevices;
class QTimer;

namespace zentrik {

// Records the microphone to an AAC file in an MPEG-4 container (".m4a"): 44,100 Hz, two
// channels, high quality. The capture objects and the elapsed-time timer exist only while
// a recording runs.
//
// Opening the microphone and the encoder can take a moment (seconds on a busy machine), so
// a recording counts as started only once sound arrives: until then isStarting() is true,
// and the clock has not begun. Stopping is not instant either: the encoder finishes the
// file first, and recordingFinished() hands it over once it is complete.
//
// Now and then (about one start in ten or twenty under PulseAudio) Qt's GStreamer backend
// links the encoder into the new capture pipeline without any sound ever reaching it: the
// muxer's latency query fails and the file stays empty however long one waits, while the
// same start a moment later works at once. A start that hears nothing within
// attemptTimeoutMs therefore opens the microphone again with fresh capture objects, up to
// startAttempts times, before it counts as failed.
class AudioRecorder : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool isRecording READ isRecording NOTIFY isRecordingChanged FINAL)
    Q_PROPERTY(bool isStarting READ isStarting NOTIFY isStartingChanged FINAL)
    Q_PROPERTY(double recordingTime READ recordingTime NOTIFY recordingTimeChanged FINAL)
    Q_PROPERTY(bool microphoneAccessGranted READ microphoneAccessGranted NOTIFY microphoneAccessGrantedChanged FINAL)

public:
    static constexpr int sampleRate = 44100;
    static constexpr int channelCount = 2;
    static constexpr int timerIntervalMs = 100;
    // How long one attempt at opening the microphone may stay silent before it is tried again,
    // and how often; together, how long a start may take before it counts as failed.
    static constexpr int attemptTimeoutMs = 3000;
    static constexpr int startAttempts = 4;
    static constexpr int startTimeoutMs = attemptTimeoutMs * startAttempts;
    // How long a stopped recording may take to be finished before it is given up.
    static constexpr int finishTimeoutMs = 15000;

    explicit AudioRecorder(QObject *parent = nullptr);
    ~AudioRecorder() override;

    [[nodiscard]] bool isRecording() const;
    [[nodiscard]] bool isStarting() const;
    // Whether a stopped recording is still being finished.
    [[nodiscard]] bool isFinishing() const;
    // Seconds recorded so far.
    [[nodiscard]] double recordingTime() const { return m_recordingTime; }
    // Whether there is a microphone to record from. Linux asks for no permission; a
    // sandbox that hides the devices shows as no microphone.
    [[nodiscard]] bool microphoneAccessGranted() const { return m_microphoneAccessGranted; }

    // Where recordings go: "recordings" in the application's data directory.
    [[nodiscard]] static QString recordingsDirectory();

    // Opens the microphone for a new recording; false when that cannot even begin (the
    // reason in the log and, unless there is no microphone, in recordingFailed()).
    bool start();
    // Stops the recording; recordingFinished() follows once the file is complete. While the
    // microphone is still opening, stopping abandons the recording instead.
    void stop();

    // Whether the platform's media backend can encode AAC into an MPEG-4 file. Qt's
    // GStreamer backend needs the base, good, bad (an AAC encoder) and PulseAudio plugins.
    [[nodiscard]] static bool canWriteAac();

Q_SIGNALS:
    void isRecordingChanged();
    void isStartingChanged();
    // A stopped or abandoned recording began or ended being finished.
    void isFinishingChanged();
    void recordingTimeChanged();
    void microphoneAccessGrantedChanged();
    // The complete recording, or an empty path when none was made.
    void recordingFinished(const QString &filePath);
    // The recording could not start or broke off; the reason is in the log and here.
    void recordingFailed(const QString &description);

private:
    struct Capture;
    enum class Stage { starting, recording, abandoning, finishing };
    enum class DiscardFile { keep, remove };
    // What the signals report, taken before a change so that every flag that changed is
    // announced, whichever way the capture ends.
    struct Flags
    {
        bool recording;
        bool starting;
        bool finishing;
    };

    [[nodiscard]] Flags flags() const;
    void announceChanges(const Flags &before);

    void updateMicrophoneAccess();
    // Builds the capture objects and starts writing a new file; false, with the reason, when
    // that fails at once (nothing is left behind then).
    bool openCapture(int attempt, QString *problem);
    void retryStart();
    // Ends the capture without announcing it; the objects go once control is back in the
    // event loop.
    void releaseCapture(DiscardFile file);
    void setStage(Capture &capture, Stage stage);
    void setRecordingTime(double seconds);
    void onSoundArrived();
    void onRecorderStopped();
    void onRecorderError(const QString &description);
    // Ends the capture; the objects go once control is back in the event loop.
    void discardCapture(DiscardFile file);

    QMediaDevices *m_devices;
    std::unique_ptr<Capture> m_capture;
    QTimer *m_timer = nullptr;
    QElapsedTimer m_clock;
    double m_recordingTime = 0;
    bool m_microphoneAccessGranted = false;
};

} // namespace zentrik
