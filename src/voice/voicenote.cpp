#include "voice/voicenote.h"

#include <QUuid>

namespace zentrik {

namespace {
const QString idKey = QStringLiteral("id");
const QString titleKey = QStringLiteral("title");
const QString transcriptionKey = QStringLiteral("transcription");
const QString dateKey = QStringLiteral("date");
} // namespace

VoiceNote VoiceNote::create(const QString &title, const QString &transcription)
{
    // Stored dates keep milliseconds; a note made now must compare equal once read back.
    const QDateTime now = QDateTime::fromMSecsSinceEpoch(QDateTime::currentMSecsSinceEpoch(), Qt::UTC);
    return { QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper(), title, transcription, now };
}

QJsonObject VoiceNote::toJson() const
{
    return {
        { idKey, id },
        { titleKey, title },
        { transcriptionKey, transcription },
        { dateKey, date.toUTC().toString(Qt::ISODateWithMs) },
    };
}

std::optional<VoiceNote> VoiceNote::fromJson(const QJsonValue &value)
{
    const QJsonObject object = value.toObject();
    const QJsonValue id = object.value(idKey);
    const QJsonValue title = object.value(titleKey);
    const QJsonValue transcription = object.value(transcriptionKey);
    const QJsonValue date = object.value(dateKey);
    if (!id.isString() || id.toString().isEmpty() || !title.isString() || !transcription.isString()
        || !date.isString()) {
        return std::nullopt;
    }
    const QDateTime parsed = QDateTime::fromString(date.toString(), Qt::ISODateWithMs);
    if (!parsed.isValid()) {
        return std::nullopt;
    }
    return VoiceNote { id.toString(), title.toString(), transcription.toString(), parsed.toUTC() };
}

} // namespace zentrik
