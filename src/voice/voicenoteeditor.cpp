#include "voice/voicenoteeditor.h"

#include "voice/voicenotemanager.h"

namespace zentrik {

VoiceNoteEditor::VoiceNoteEditor(VoiceNoteManager *manager, QObject *parent)
    : QObject(parent)
    , m_manager(manager)
{ }

void VoiceNoteEditor::setTitle(const QString &title)
{
    if (title == m_title) {
        return;
    }
    const bool couldSave = canSave();
    m_title = title;
    Q_EMIT titleChanged();
    if (canSave() != couldSave) {
        Q_EMIT canSaveChanged();
    }
}

void VoiceNoteEditor::setTranscription(const QString &transcription)
{
    if (transcription == m_transcription) {
        return;
    }
    m_transcription = transcription;
    Q_EMIT transcriptionChanged();
}

void VoiceNoteEditor::setNoteId(const QString &noteId)
{
    if (noteId == m_noteId) {
        return;
    }
    const bool couldSave = canSave();
    m_noteId = noteId;
    Q_EMIT isOpenChanged();
    if (canSave() != couldSave) {
        Q_EMIT canSaveChanged();
    }
}

bool VoiceNoteEditor::open(const QString &noteId)
{
    const std::optional<VoiceNote> note = !m_manager.isNull() ? m_manager->note(noteId) : std::nullopt;
    if (!note) {
        return false;
    }
    setTitle(note->title);
    setTranscription(note->transcription);
    setNoteId(note->id);
    return true;
}

bool VoiceNoteEditor::save()
{
    if (!canSave()) {
        return false;
    }
    std::optional<VoiceNote> note = !m_manager.isNull() ? m_manager->note(m_noteId) : std::nullopt;
    if (note) {
        note->title = m_title;
        note->transcription = m_transcription;
    }
    if (!note || !m_manager->replace(*note)) {
        close();
        Q_EMIT noteVanished();
        return false;
    }
    close();
    return true;
}

void VoiceNoteEditor::cancel()
{
    close();
}

void VoiceNoteEditor::close()
{
    setNoteId({});
    setTitle({});
    setTranscription({});
}

} // namespace zentrik
