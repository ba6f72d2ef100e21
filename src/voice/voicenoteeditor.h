#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <QtQmlIntegration>

namespace zentrik {

class VoiceNoteManager;

// The note editor of the voice notes screen: opens on a note with its title and
// transcription; Save replaces the note (same id, same date), Cancel leaves it unchanged.
class VoiceNoteEditor : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("owned by the voice notes view model")
    Q_PROPERTY(bool isOpen READ isOpen NOTIFY isOpenChanged FINAL)
    Q_PROPERTY(QString noteId READ noteId NOTIFY isOpenChanged FINAL)
    Q_PROPERTY(QString title READ title WRITE setTitle NOTIFY titleChanged FINAL)
    Q_PROPERTY(QString transcription READ transcription WRITE setTranscription NOTIFY transcriptionChanged FINAL)
    Q_PROPERTY(bool canSave READ canSave NOTIFY canSaveChanged FINAL)

public:
    explicit VoiceNoteEditor(VoiceNoteManager *manager, QObject *parent = nullptr);

    [[nodiscard]] bool isOpen() const { return !m_noteId.isEmpty(); }
    [[nodiscard]] QString noteId() const { return m_noteId; }
    [[nodiscard]] QString title() const { return m_title; }
    void setTitle(const QString &title);
    [[nodiscard]] QString transcription() const { return m_transcription; }
    void setTranscription(const QString &transcription);
    // A note needs a title that is more than white space.
    [[nodiscard]] bool canSave() const { return isOpen() && !m_title.trimmed().isEmpty(); }

    // Opens the editor on the note; false when there is no such note.
    Q_INVOKABLE bool open(const QString &noteId);
    // Replaces the note and closes the editor; false (editor left open) when the title is
    // blank, and false with noteVanished() when the note was deleted meanwhile.
    Q_INVOKABLE bool save();
    Q_INVOKABLE void cancel();

Q_SIGNALS:
    void isOpenChanged();
    void titleChanged();
    void transcriptionChanged();
    void canSaveChanged();
    // The note being edited no longer exists; the edit could not be saved.
    void noteVanished();

private:
    void close();
    void setNoteId(const QString &noteId);

    QPointer<VoiceNoteManager> m_manager;
    QString m_noteId;
    QString m_title;
    QString m_transcription;
};

} // namespace zentrik
