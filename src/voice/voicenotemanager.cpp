#include "voice/voicenotemanager.h"

#include "voice/voicelogging.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace zentrik {

namespace {

QString backupKey(int number)
{
    const QString prefix = QString::fromLatin1(VoiceNoteManager::backupKeyPrefix);
    return number == 1 ? prefix : prefix + QString::number(number);
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

void VoiceNoteManager::add(const VoiceNote &note)
{
    change([&note](QList<VoiceNote> &notes) {
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

void VoiceNoteManager::reload()
{
    publish(load());
}

QList<VoiceNote> VoiceNoteManager::load()
{
    const QString key = QString::fromLatin1(storageKey);
    if (!m_preferences.contains(key)) {
        return {};
    }
    const QByteArray stored = m_preferences.data(key);
    if (stored.trimmed().isEmpty()) {
        return {};
    }
    QJsonParseError parseError {};
    const QJsonDocument document = QJsonDocument::fromJson(stored, &parseError);
    QList<VoiceNote> notes;
    bool readInFull = parseError.error == QJsonParseError::NoError && document.isArray();
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
    if (!readInFull) {
        keepAside(stored);
    }
    return notes;
}

void VoiceNoteManager::keepAside(const QByteArray &stored)
{
    int number = 1;
    for (;; ++number) {
        const QString key = backupKey(number);
        if (!m_preferences.contains(key)) {
            m_preferences.setData(key, stored);
            qCWarning(lcVoice).noquote() << QStringLiteral(
                "The stored voice notes could not be read in full; the stored list was kept under \"%1\" in %2")
                                                .arg(key, m_preferences.fileName());
            break;
        }
        if (m_preferences.data(key) == stored) {
            break; // already kept on an earlier run
        }
    }
    const QString key = backupKey(number);
    if (m_unreadableBackupKey != key) {
        m_unreadableBackupKey = key;
        Q_EMIT unreadableNotesFound(key);
    }
}

bool VoiceNoteManager::change(const std::function<bool(QList<VoiceNote> &notes)> &edit)
{
    QList<VoiceNote> notes = load();
    const bool changed = edit(notes);
    if (changed) {
        store(notes);
    }
    publish(notes);
    return changed;
}

void VoiceNoteManager::store(const QList<VoiceNote> &notes)
{
    QJsonArray array;
    for (const VoiceNote &note : notes) {
        array.append(note.toJson());
    }
    m_preferences.setData(QString::fromLatin1(storageKey), QJsonDocument(array).toJson(QJsonDocument::Compact));
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
