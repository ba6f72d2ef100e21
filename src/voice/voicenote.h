#pragma once

#include <QDateTime>
#include <QJsonObject>
#include <QString>

#include <optional>

namespace zentrik {

// A transcribed recording: its id never changes, nor its date of creation; the title and
// the transcription are the user's to edit.
struct VoiceNote
{
    QString id;
    QString title;
    QString transcription;
    QDateTime date;

    // A note made now, with a fresh id.
    [[nodiscard]] static VoiceNote create(const QString &title, const QString &transcription);

    // {"id", "title", "transcription", "date"}; the date as ISO 8601 in UTC with
    // milliseconds, so that it reads back equal.
    [[nodiscard]] QJsonObject toJson() const;
    // std::nullopt unless all four keys hold strings, the id is not empty and the date
    // is a valid ISO 8601 date and time.
    [[nodiscard]] static std::optional<VoiceNote> fromJson(const QJsonValue &value);

    friend bool operator==(const VoiceNote &, const VoiceNote &) = default;
};

} // namespace zentrik
