#include "voice/voicenotesviewmodel.h"

#include "voice/voicelogging.h"

#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cmath>

namespace zentrik {

namespace {

// Only files in the recorder's own folder are ever deleted.
bool isOwnRecording(const QString &filePath)
{
    const QString directory = QDir(AudioRecorder::recordingsDirectory()).canonicalPath();
    return !directory.isEmpty() && QFileInfo(filePath).canonicalPath() == directory;
}

} // namespace

VoiceNotesViewModel::VoiceNotesViewModel(QObject *parent)
    : QObject(parent)
    , m_manager(new VoiceNoteManager(this))
    , m_recorder(new AudioRecorder(this))
    , m_notes(new VoiceNoteListModel(this))
    , m_editor(new VoiceNoteEditor(m_manager, this))
{
    connect(m_manager, &VoiceNoteManager::notesChanged, this, &VoiceNotesViewModel::refreshNotes);
    connect(m_manager, &VoiceNoteManager::unreadableNotesFound, this, &VoiceNotesViewModel::storageWarningChanged);
    connect(m_manager, &VoiceNoteManager::writeFailed, this,
        [this](const QString &message) { setErrorMessage(tr("The voice notes could not be saved: %1").arg(message)); });
    connect(m_recorder, &AudioRecorder::isRecordingChanged, this, &VoiceNotesViewModel::isRecordingChanged);
    connect(m_recorder, &AudioRecorder::isRecordingChanged, this, &VoiceNotesViewModel::canRecordChanged);
    connect(m_recorder, &AudioRecorder::isStartingChanged, this, &VoiceNotesViewModel::isStartingChanged);
    connect(m_recorder, &AudioRecorder::isStartingChanged, this, &VoiceNotesViewModel::canRecordChanged);
    // A recording abandoned while the microphone was opening ends without a result; the
    // button must come back when its finishing does, not when something else happens.
    connect(m_recorder, &AudioRecorder::isFinishingChanged, this, &VoiceNotesViewModel::canRecordChanged);
    connect(m_recorder, &AudioRecorder::recordingTimeChanged, this, &VoiceNotesViewModel::recordingTimeChanged);
    connect(m_recorder, &AudioRecorder::microphoneAccessGrantedChanged, this,
        &VoiceNotesViewModel::microphoneAvailableChanged);
    connect(m_recorder, &AudioRecorder::microphoneAccessGrantedChanged, this, &VoiceNotesViewModel::canRecordChanged);
    connect(m_recorder, &AudioRecorder::recordingFinished, this, &VoiceNotesViewModel::processRecording);
    connect(m_recorder, &AudioRecorder::recordingFailed, this, [this](const QString &description) {
        setErrorMessage(tr("Recording failed: %1").arg(description));
        setProcessing(false);
    });
    connect(m_editor, &VoiceNoteEditor::noteVanished, this,
        [this] { setErrorMessage(tr("The note was deleted before the edit could be saved.")); });
    m_notes->setNotes(m_manager->notes());
    m_noteCount = int(m_manager->notes().size());
}

VoiceNotesViewModel::~VoiceNotesViewModel() = default;

void VoiceNotesViewModel::setApiManager(APIManager *apiManager)
{
    if (m_apiManager == apiManager) {
        return;
    }
    m_apiManager = apiManager;
    Q_EMIT apiManagerChanged();
}

QString VoiceNotesViewModel::recordingTimeText() const
{
    const auto seconds = qint64(std::floor(m_recorder->recordingTime()));
    return QStringLiteral("%1:%2").arg(seconds / 60).arg(seconds % 60, 2, 10, QLatin1Char('0'));
}

bool VoiceNotesViewModel::canRecord() const
{
    if (m_recorder->isRecording() || m_recorder->isStarting()) {
        return true;
    }
    return m_recorder->microphoneAccessGranted() && !m_isProcessing && !m_recorder->isFinishing();
}

QString VoiceNotesViewModel::storageWarning() const
{
    const QString key = m_manager->unreadableBackupKey();
    if (key.isEmpty()) {
        return {};
    }
    return tr("Some saved voice notes could not be read. The saved list was kept unchanged under \"%1\" in %2.")
        .arg(key, m_manager->storageFileName());
}

void VoiceNotesViewModel::setSearchText(const QString &text)
{
    if (text == m_searchText) {
        return;
    }
    m_searchText = text;
    Q_EMIT searchTextChanged();
    refreshNotes();
}

void VoiceNotesViewModel::toggleRecording()
{
    if (m_recorder->isRecording()) {
        stopRecording();
    } else if (m_recorder->isStarting()) {
        m_recorder->stop();
    } else if (canRecord()) {
        startRecording();
    }
}

void VoiceNotesViewModel::startRecording()
{
    setErrorMessage({});
    m_recorder->start(); // a failure arrives through recordingFailed
}

void VoiceNotesViewModel::stopRecording()
{
    // Finishing the file is part of processing: the button waits for it.
    setProcessing(true);
    m_recorder->stop();
}

void VoiceNotesViewModel::processRecording(const QString &filePath)
{
    if (filePath.isEmpty()) {
        qInfo().noquote() << "No audio URL returned";
        setErrorMessage(tr("The recording could not be saved."));
        setProcessing(false);
        return;
    }
    qInfo().noquote() << "Processing audio file at: " + filePath;
    setErrorMessage({});
    setProcessing(true);
    if (m_apiManager.isNull()) {
        onTranscribed(filePath, APIError { APIError::generalNetworkError, tr("No model access is set up.") });
        return;
    }
    m_apiManager->transcribe(
        filePath, this, [this, filePath](const TextResult &result) { onTranscribed(filePath, result); });
}

void VoiceNotesViewModel::onTranscribed(const QString &filePath, const TextResult &result)
{
    if (const auto *error = std::get_if<APIError>(&result)) {
        qInfo().noquote() << "Transcription failed: " + error->message();
        setFailedRecording(filePath);
        setErrorMessage(tr("Transcription failed: %1").arg(error->message()));
        setProcessing(false);
        return;
    }
    const auto &text = std::get<QString>(result);
    qInfo().noquote() << "Transcription received: " + text;
    const VoiceNote note = VoiceNote::create(tr("New Voice Note"), text);
    if (!m_manager->add(note)) {
        // The recording stays, so that Retry can save its note once the disk has room.
        setFailedRecording(filePath);
        setProcessing(false);
        return;
    }
    if (isOwnRecording(filePath) && !QFile::remove(filePath)) {
        qCWarning(lcVoice).noquote() << "Could not remove the transcribed recording" << filePath;
    }
    setFailedRecording({});
    setProcessing(false);
}

void VoiceNotesViewModel::retryTranscription()
{
    if (!canRetry()) {
        return;
    }
    processRecording(m_failedRecording);
}

void VoiceNotesViewModel::dismissError()
{
    setErrorMessage({});
}

void VoiceNotesViewModel::requestDelete(const QString &noteId)
{
    const std::optional<VoiceNote> note = m_manager->note(noteId);
    if (!note) {
        return;
    }
    m_pendingDeleteId = note->id;
    m_pendingDeleteTitle = note->title;
    Q_EMIT pendingDeleteChanged();
}

void VoiceNotesViewModel::confirmDelete()
{
    if (m_pendingDeleteId.isEmpty()) {
        return;
    }
    const QString id = m_pendingDeleteId;
    cancelDelete();
    if (m_editor->noteId() == id) {
        m_editor->cancel();
    }
    m_manager->remove(id);
}

void VoiceNotesViewModel::cancelDelete()
{
    if (m_pendingDeleteId.isEmpty()) {
        return;
    }
    m_pendingDeleteId.clear();
    m_pendingDeleteTitle.clear();
    Q_EMIT pendingDeleteChanged();
}

void VoiceNotesViewModel::copyTranscription(const QString &noteId)
{
    if (const std::optional<VoiceNote> note = m_manager->note(noteId)) {
        Q_EMIT copyRequested(note->transcription);
    }
}

void VoiceNotesViewModel::refreshNotes()
{
    m_notes->setNotes(m_manager->search(m_searchText));
    const int count = int(m_manager->notes().size());
    if (count != m_noteCount) {
        m_noteCount = count;
        Q_EMIT noteCountChanged();
    }
}

void VoiceNotesViewModel::setProcessing(bool processing)
{
    if (processing == m_isProcessing) {
        return;
    }
    const bool couldRetry = canRetry();
    m_isProcessing = processing;
    Q_EMIT isProcessingChanged();
    Q_EMIT canRecordChanged();
    if (canRetry() != couldRetry) {
        Q_EMIT canRetryChanged();
    }
}

void VoiceNotesViewModel::setErrorMessage(const QString &message)
{
    if (message == m_errorMessage) {
        return;
    }
    m_errorMessage = message;
    Q_EMIT errorMessageChanged();
}

void VoiceNotesViewModel::setFailedRecording(const QString &filePath)
{
    if (filePath == m_failedRecording) {
        return;
    }
    const bool couldRetry = canRetry();
    m_failedRecording = filePath;
    if (canRetry() != couldRetry) {
        Q_EMIT canRetryChanged();
    }
}

} // namespace zentrik
