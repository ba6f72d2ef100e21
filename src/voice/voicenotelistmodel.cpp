#include "voice/voicenotelistmodel.h"

#include <QLocale>
#include <QSet>

namespace zentrik {

VoiceNoteListModel::VoiceNoteListModel(QObject *parent)
    : QAbstractListModel(parent)
{ }

int VoiceNoteListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : count();
}

QVariant VoiceNoteListModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid)) {
        return {};
    }
    const VoiceNote &note = m_notes.at(index.row());
    switch (role) {
    case Qt::DisplayRole:
    case TitleRole:
        return note.title;
    case IdRole:
        return note.id;
    case TranscriptionRole:
        return note.transcription;
    case DateRole:
        return note.date;
    case DateTextRole:
        return dateText(note.date);
    default:
        return {};
    }
}

QHash<int, QByteArray> VoiceNoteListModel::roleNames() const
{
    return {
        { IdRole, "noteId" },
        { TitleRole, "title" },
        { TranscriptionRole, "transcription" },
        { DateRole, "date" },
        { DateTextRole, "dateText" },
    };
}

QString VoiceNoteListModel::dateText(const QDateTime &date)
{
    return QLocale().toString(date.toLocalTime(), QLocale::ShortFormat);
}

bool VoiceNoteListModel::keepsOrder(const QList<VoiceNote> &before, const QList<VoiceNote> &after)
{
    QSet<QString> ids;
    for (const VoiceNote &note : after) {
        if (ids.contains(note.id)) {
            return false; // the same id twice cannot be matched row for row
        }
        ids.insert(note.id);
    }
    QStringList commonBefore;
    QSet<QString> seenBefore;
    for (const VoiceNote &note : before) {
        if (seenBefore.contains(note.id)) {
            return false;
        }
        seenBefore.insert(note.id);
        if (ids.contains(note.id)) {
            commonBefore.append(note.id);
        }
    }
    qsizetype next = 0;
    for (const VoiceNote &note : after) {
        if (seenBefore.contains(note.id)) {
            if (next >= commonBefore.size() || commonBefore.at(next) != note.id) {
                return false;
            }
            ++next;
        }
    }
    return true;
}

void VoiceNoteListModel::setNotes(const QList<VoiceNote> &notes)
{
    const int countBefore = count();
    if (!keepsOrder(m_notes, notes)) {
        beginResetModel();
        m_notes = notes;
        endResetModel();
    } else {
        QSet<QString> wanted;
        for (const VoiceNote &note : notes) {
            wanted.insert(note.id);
        }
        // Walk both lists together: rows that are gone go, rows that are new come in at
        // their place, rows present in both are compared.
        int row = 0;
        for (const VoiceNote &note : notes) {
            while (row < count() && !wanted.contains(m_notes.at(row).id)) {
                beginRemoveRows({}, row, row);
                m_notes.removeAt(row);
                endRemoveRows();
            }
            if (row < count() && m_notes.at(row).id == note.id) {
                if (!(m_notes.at(row) == note)) {
                    m_notes[row] = note;
                    const QModelIndex changed = index(row);
                    Q_EMIT dataChanged(changed, changed);
                }
            } else {
                beginInsertRows({}, row, row);
                m_notes.insert(row, note);
                endInsertRows();
            }
            ++row;
        }
        if (row < count()) {
            beginRemoveRows({}, row, count() - 1);
            m_notes.remove(row, count() - row);
            endRemoveRows();
        }
    }
    if (count() != countBefore) {
        Q_EMIT countChanged();
    }
}

} // namespace zentrik
