#pragma once

#include "voice/voicenote.h"

#include <QAbstractListModel>
#include <QList>
#include <QtQmlIntegration>

namespace zentrik {

// The notes a screen shows. setNotes() tells the views only what changed: rows removed,
// rows inserted and rows whose text changed, so an edit or a new note keeps the list where
// it is scrolled.
class VoiceNoteListModel : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("owned by the voice notes view model")
    Q_PROPERTY(int count READ count NOTIFY countChanged FINAL)

public:
    enum Role {
        IdRole = Qt::UserRole + 1,
        TitleRole,
        TranscriptionRole,
        DateRole,
        DateTextRole,
    };
    Q_ENUM(Role)

    explicit VoiceNoteListModel(QObject *parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    [[nodiscard]] int count() const { return int(m_notes.size()); }
    [[nodiscard]] const QList<VoiceNote> &notes() const { return m_notes; }
    void setNotes(const QList<VoiceNote> &notes);

    // The date as the list shows it: the user's locale, short, in local time.
    [[nodiscard]] static QString dateText(const QDateTime &date);

Q_SIGNALS:
    void countChanged();

private:
    // Whether the notes both lists hold appear in the same order in each.
    [[nodiscard]] static bool keepsOrder(const QList<VoiceNote> &before, const QList<VoiceNote> &after);

    QList<VoiceNote> m_notes;
};

} // namespace zentrik
