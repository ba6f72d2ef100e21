#pragma once

#include "model/apimanager.h"
#include "voice/audiorecorder.h"
#include "voice/voicenoteeditor.h"
#include "voice/voicenotelistmodel.h"
#include "voice/voicenotemanager.h"

#include <QObject>
#include <QPointer>
#include <QString>
#include <QtQmlIntegration>

namespace zentrik {

// The voice notes screen: record, stop, transcribe into a new note; search, edit, delete
// (after a confirmation) and copy notes; the editor is a part of its own. Recorder and transcription failures leave the
// notes as they are and show one line in errorMessage.
class VoiceNotesViewModel : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(zentrik::APIManager *apiManager READ apiManager WRITE setApiManager NOTIFY apiManagerChanged FINAL)
    Q_PROPERTY(zentrik::VoiceNoteListModel *notes READ notes CONSTANT FINAL)
    Q_PROPERTY(int noteCount READ noteCount NOTIFY noteCountChanged FINAL)
    Q_PROPERTY(bool isRecording READ isRecording NOTIFY isRecordingChanged FINAL)
    Q_PROPERTY(bool isStarting READ isStarting NOTIFY isStartingChanged FINAL)
    Q_PROPERTY(double recordingTime READ recordingTime NOTIFY recordingTimeChanged FINAL)
    Q_PROPERTY(QString recordingTimeText READ recordingTimeText NOTIFY recordingTimeChanged FINAL)
    Q_PROPERTY(bool microphoneAvailable READ microphoneAvailable NOTIFY microphoneAvailableChanged FINAL)
    Q_PROPERTY(bool isProcessing READ isProcessing NOTIFY isProcessingChanged FINAL)
    Q_PROPERTY(bool canRecord READ canRecord NOTIFY canRecordChanged FINAL)
    Q_PROPERTY(QString errorMessage READ errorMessage NOTIFY errorMessageChanged FINAL)
    Q_PROPERTY(bool canRetry READ canRetry NOTIFY canRetryChanged FINAL)
    Q_PROPERTY(QString storageWarning READ storageWarning NOTIFY storageWarningChanged FINAL)
    Q_PROPERTY(QString searchText READ searchText WRITE setSearchText NOTIFY searchTextChanged FINAL)
    Q_PROPERTY(zentrik::VoiceNoteEditor *editor READ editor CONSTANT FINAL)
    Q_PROPERTY(bool showDeleteConfirmation READ showDeleteConfirmation NOTIFY pendingDeleteChanged FINAL)
    Q_PROPERTY(QString pendingDeleteTitle READ pendingDeleteTitle NOTIFY pendingDeleteChanged FINAL)

public:
    explicit VoiceNotesViewModel(QObject *parent = nullptr);
    ~VoiceNotesViewModel() override;

    [[nodiscard]] APIManager *apiManager() const { return m_apiManager; }
    void setApiManager(APIManager *apiManager);
    [[nodiscard]] VoiceNoteListModel *notes() const { return m_notes; }
    [[nodiscard]] int noteCount() const { return m_noteCount; }
    [[nodiscard]] bool isRecording() const { return m_recorder->isRecording(); }
    // The microphone is being opened; the recording has not begun yet.
    [[nodiscard]] bool isStarting() const { return m_recorder->isStarting(); }
    [[nodiscard]] double recordingTime() const { return m_recorder->recordingTime(); }
    // "m:ss"
    [[nodiscard]] QString recordingTimeText() const;
    [[nodiscard]] bool microphoneAvailable() const { return m_recorder->microphoneAccessGranted(); }
    [[nodiscard]] bool isProcessing() const { return m_isProcessing; }
    // Whether the record button starts (or stops) a recording now.
    [[nodiscard]] bool canRecord() const;
    [[nodiscard]] QString errorMessage() const { return m_errorMessage; }
    [[nodiscard]] bool canRetry() const { return !m_failedRecording.isEmpty() && !m_isProcessing; }
    [[nodiscard]] QString storageWarning() const;
    [[nodiscard]] QString searchText() const { return m_searchText; }
    void setSearchText(const QString &text);

    [[nodiscard]] VoiceNoteEditor *editor() const { return m_editor; }

    [[nodiscard]] bool showDeleteConfirmation() const { return !m_pendingDeleteId.isEmpty(); }
    [[nodiscard]] QString pendingDeleteTitle() const { return m_pendingDeleteTitle; }

    [[nodiscard]] VoiceNoteManager *manager() const { return m_manager; }
    [[nodiscard]] AudioRecorder *recorder() const { return m_recorder; }

    // The record button: starts a recording, or stops the running one and transcribes it
    // (while the microphone is still opening, it abandons the recording).
    Q_INVOKABLE void toggleRecording();
    // Sends the recording of the last failed transcription again.
    Q_INVOKABLE void retryTranscription();
    Q_INVOKABLE void dismissError();

    Q_INVOKABLE void requestDelete(const QString &noteId);
    Q_INVOKABLE void confirmDelete();
    Q_INVOKABLE void cancelDelete();

    // Hands the note's transcription to copyRequested.
    Q_INVOKABLE void copyTranscription(const QString &noteId);

    // The step after a recording stops: transcribes the file into a new note. An empty
    // path means the recording produced nothing. Recordings the recorder made are removed
    // once transcribed; other files are left where they are.
    void processRecording(const QString &filePath);

Q_SIGNALS:
    void apiManagerChanged();
    void noteCountChanged();
    void isRecordingChanged();
    void isStartingChanged();
    void recordingTimeChanged();
    void microphoneAvailableChanged();
    void isProcessingChanged();
    void canRecordChanged();
    void errorMessageChanged();
    void canRetryChanged();
    void storageWarningChanged();
    void searchTextChanged();
    void pendingDeleteChanged();
    // The window puts the text on the clipboard.
    void copyRequested(const QString &text);

private:
    void startRecording();
    void stopRecording();
    void onTranscribed(const QString &filePath, const TextResult &result);
    void refreshNotes();
    void setProcessing(bool processing);
    void setErrorMessage(const QString &message);
    void setFailedRecording(const QString &filePath);

    QPointer<APIManager> m_apiManager;
    VoiceNoteManager *m_manager;
    AudioRecorder *m_recorder;
    VoiceNoteListModel *m_notes;
    VoiceNoteEditor *m_editor;
    int m_noteCount = 0;
    bool m_isProcessing = false;
    QString m_errorMessage;
    QString m_failedRecording;
    QString m_searchText;
    QString m_pendingDeleteId;
    QString m_pendingDeleteTitle;
};

} // namespace zentrik
