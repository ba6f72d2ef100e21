#include "voice/voicenotemanager.h"

#include "voice/voicelogging.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <utility>

namespace zentrik {

namespace {

QString backupKey(int number)
{
    const QString prefix = QString::fromLatin1(VoiceNoteManager::backupKeyPrefix);
    return number == 1 ? prefix : prefix + QString::number(number);
}

// The notes of a stored list; readInFull is false when anything in it could not be read.
QList<VoiceNote> parseNotes(const QByteArray &stored, bool &readInFull)
{
    readInFull = true;
    if (stored.trimmed().isEmpty()) {
        return {};
    }
    QJsonParseError parseError {};
    const QJsonDocument document = QJsonDocument::fromJson(stored, &parseError);
    QList<VoiceNote> notes;
    readInFull = parseError.error == QJsonParseError::NoError && document.isArray();
    if (readInFull) {
        const QJsonArray array = document.array();
        for (const auto &value : array) {
            if (std::optional<VoiceNote> note = VoiceNote::fromJson(value)) {
                notes.append(*note);
            } else {
                readInFull = false;
            }
        }
    }
    return notes;
}

QByteArray serialize(const QList<VoiceNote> &notes)
{
    QJsonArray array;
    for (const VoiceNote &note : notes) {
        array.append(note.toJson());
    }
    return QJsonDocument(array).toJson(QJsonDocument::Compact);
}

} // namespace

VoiceNoteManager::VoiceNoteManager(QObject *parent)
    : QObject(parent)
{
    m_notes = load();
}

VoiceNoteManager::~VoiceNoteManager() = default;

std::optional<VoiceNote> VoiceNoteManager::note(const QString &id) const
{
    for (const VoiceNote &note : m_notes) {
        if (note.id == id) {
            return note;
        }
    }
    return std::nullopt;
}

bool VoiceNoteManager::add(const VoiceNote &note)
{
    return change([&note](QList<VoiceNote> &notes) {
        notes.prepend(note);
        return true;
    });
}

bool VoiceNoteManager::replace(const VoiceNote &note)
{
    return change([&note](QList<VoiceNote> &notes) {
        for (VoiceNote &stored : notes) {
            if (stored.id == note.id) {
                stored = note;
                return true;
            }
        }
        return false;
    });
}

bool VoiceNoteManager::remove(const QString &id)
{
    return change([&id](QList<VoiceNote> &notes) {
        return notes.removeIf([&id](const VoiceNote &note) { return note.id == id; }) > 0;
    });
}

bool VoiceNoteManager::matches(const VoiceNote &note, const QString &text)
{
    if (text.trimmed().isEmpty()) {
        return true;
    }
    return note.title.contains(text, Qt::CaseInsensitive) || note.transcription.contains(text, Qt::CaseInsensitive);
}

QList<VoiceNote> VoiceNoteManager::search(const QString &text) const
{
    QList<VoiceNote> found;
    for (const VoiceNote &note : m_notes) {
        if (matches(note, text)) {
            found.append(note);
        }
    }
    return found;
}

QList<VoiceNote> VoiceNoteManager::load()
{
    const QString key = QString::fromLatin1(storageKey);
    if (!m_preferences.contains(key)) {
        return {};
    }
    const QByteArray stored = m_preferences.data(key);
    bool readInFull = true;
    QList<VoiceNote> notes = parseNotes(stored, readInFull);
    if (!readInFull) {
        m_preferences.update([&](QVariantMap &values) {
            // Only the list that was read is kept aside; a writer may have replaced it since.
            return values.value(key).toByteArray() == stored && keepAside(values, stored);
        });
        noteBackup();
    }
    return notes;
}

bool VoiceNoteManager::keepAside(QVariantMap &values, const QByteArray &stored)
{
    for (int number = 1;; ++number) {
        const QString key = backupKey(number);
        if (!values.contains(key)) {
            values.insert(key, stored);
            m_pendingBackupKey = key;
            return true;
        }
        if (values.value(key).toByteArray() == stored) {
            m_pendingBackupKey = key; // already kept on an earlier run
            return false;
        }
    }
}

void VoiceNoteManager::noteBackup()
{
    const QString key = std::exchange(m_pendingBackupKey, QString());
    if (key.isEmpty() || m_unreadableBackupKey == key) {
        return;
    }
    qCWarning(lcVoice).noquote() << QStringLiteral(
        "The stored voice notes could not be read in full; the stored list was kept under \"%1\" in %2")
                                        .arg(key, m_preferences.fileName());
    m_unreadableBackupKey = key;
    Q_EMIT unreadableNotesFound(key);
}

bool VoiceNoteManager::change(const std::function<bool(QList<VoiceNote> &notes)> &edit)
{
    const QString key = QString::fromLatin1(storageKey);
    QList<VoiceNote> notes;
    bool changed = false;
    m_writeError.clear();
    // Read, change and write under the preferences' lock, so that a second window or a
    // command line writing at the same moment cannot slip a list in between.
    const bool written = m_preferences.update([&](QVariantMap &values) {
        const QByteArray stored = values.value(key).toByteArray();
        bool readInFull = true;
        notes = parseNotes(stored, readInFull);
        const bool backedUp = !readInFull && keepAside(values, stored);
        changed = edit(notes);
        if (changed) {
            values.insert(key, serialize(notes));
        }
        return changed || backedUp;
    });
    if (!written && !m_preferences.errorString().isEmpty()) {
        m_pendingBackupKey.clear();
        m_writeError = m_preferences.errorString();
        qCWarning(lcVoice).noquote() << "The voice notes could not be saved:" << m_writeError;
        Q_EMIT writeFailed(m_writeError);
        publish(load());
        return false;
    }
    noteBackup();
    publish(notes);
    return changed;
}

void VoiceNoteManager::publish(const QList<VoiceNote> &notes)
{
    if (notes == m_notes) {
        return;
    }
    m_notes = notes;
    Q_EMIT notesChanged();
}

} // namespace zentrik
