#pragma once

#include "settings/preferences.h"
#include "voice/voicenote.h"

#include <QList>
#include <QObject>
#include <QString>

#include <functional>
#include <optional>

namespace zentrik {

// The user's voice notes, newest first, kept as a JSON array under "voiceNotes" in the
// preferences and written back after every change.
//
// Nothing is ever lost. Every change starts from what is stored at that moment, under a lock
// that other processes take too, so notes that another window or the command line added
// meanwhile survive even when both write at once. A change that cannot be written (a full
// disk, an unwritable file) leaves the stored list as it was and says why in writeError(). A stored list that
// cannot be read in full is copied, untouched, to a backup key of its own before anything
// is written over it; the notes that could be read are kept, and unreadableBackupKey()
// names where the original went.
class VoiceNoteManager : public QObject
{
    Q_OBJECT

public:
    static constexpr const char *storageKey = "voiceNotes";
    // The first backup goes here, later ones (should the list break again) to
    // "voiceNotesBackup2", "voiceNotesBackup3", …; an existing backup is never replaced.
    static constexpr const char *backupKeyPrefix = "voiceNotesBackup";

    explicit VoiceNoteManager(QObject *parent = nullptr);
    ~VoiceNoteManager() override;

    [[nodiscard]] const QList<VoiceNote> &notes() const { return m_notes; }
    [[nodiscard]] std::optional<VoiceNote> note(const QString &id) const;

    // Puts the note at the front of the list; false when it could not be written.
    bool add(const VoiceNote &note);
    // Replaces the note of the same id in place; false when there is none or when the change
    // could not be written (then writeError() is not empty).
    bool replace(const VoiceNote &note);
    bool remove(const QString &id);
    // Why the last change could not be written; empty when it was (or had nothing to write).
    [[nodiscard]] QString writeError() const { return m_writeError; }

    // The notes whose title or transcription contains text, ignoring case, in list order;
    // every note for a text that is empty or only white space.
    [[nodiscard]] QList<VoiceNote> search(const QString &text) const;
    [[nodiscard]] static bool matches(const VoiceNote &note, const QString &text);

    // Where the stored list went when it could not be read in full; empty when it could.
    [[nodiscard]] QString unreadableBackupKey() const { return m_unreadableBackupKey; }
    // The preferences file the list and its backups are kept in.
    [[nodiscard]] QString storageFileName() const { return m_preferences.fileName(); }

Q_SIGNALS:
    void notesChanged();
    // The stored list could not be read in full and was kept aside under backupKey.
    void unreadableNotesFound(const QString &backupKey);
    // A change was not written; message is one line saying why.
    void writeFailed(const QString &message);

private:
    // Reads the stored list, setting aside anything that cannot be read.
    [[nodiscard]] QList<VoiceNote> load();
    // Copies the unreadable bytes to a backup key among the values, unless one already holds
    // them; true when one was added.
    bool keepAside(QVariantMap &values, const QByteArray &stored);
    void noteBackup();
    // Applies the change to the list as stored now, writes it and publishes it.
    bool change(const std::function<bool(QList<VoiceNote> &notes)> &edit);
    void publish(const QList<VoiceNote> &notes);

    Preferences m_preferences;
    QList<VoiceNote> m_notes;
    QString m_unreadableBackupKey;
    QString m_pendingBackupKey;
    QString m_writeError;
};

} // namespace zentrik
