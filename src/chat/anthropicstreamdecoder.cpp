#include "chat/anthropicstreamdecoder.h"

#include <QCoreApplication>

namespace zentrik {

namespace {

QString unreadableEvent(const QString &why)
{
    return QCoreApplication::translate(
        "AnthropicStreamDecoder", "The reply stream held an event that could not be read: %1")
        .arg(why);
}

} // namespace

AnthropicStreamDecoder::Event AnthropicStreamDecoder::decode(const SseLine &line)
{
    if (line.kind != SseLine::Kind::Data) {
        return {};
    }
    auto data = dataObject(line.value, unreadableEvent);
    if (auto *failed = std::get_if<Event>(&data)) {
        return std::move(*failed);
    }
    const auto &object = std::get<QJsonObject>(data);
    const QString type = object.value(QLatin1String("type")).toString();
    if (type == QLatin1String("content_block_delta")) {
        const QJsonObject delta = object.value(QLatin1String("delta")).toObject();
        if (delta.value(QLatin1String("type")).toString() != QLatin1String("text_delta")) {
            return {};
        }
        const QJsonValue text = delta.value(QLatin1String("text"));
        if (!text.isString()) {
            return failure(ChatError::invalidReply(unreadableEvent(QStringLiteral("text_delta without text"))));
        }
        return { Event::Kind::text, text.toString(), std::nullopt };
    }
    if (type == QLatin1String("message_stop")) {
        return done();
    }
    if (type == QLatin1String("message_delta")) {
        if (object.value(QLatin1String("delta")).toObject().value(QLatin1String("stop_reason")).isString()) {
            sawEndReason();
        }
        return {};
    }
    if (type == QLatin1String("error")) {
        return failure(sseServiceError(object));
    }
    if (type.isEmpty()) {
        return failure(ChatError::invalidReply(unreadableEvent(QStringLiteral("no event type"))));
    }
    return {};
}

} // namespace zentrik
