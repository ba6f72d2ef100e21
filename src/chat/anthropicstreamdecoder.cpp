#include "chat/anthropicstreamdecoder.h"

#include "chat/chatstreamdecoder.h"
#include "net/sseline.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>

namespace zentrik {

namespace {

AnthropicStreamDecoder::Event failure(ChatError error)
{
    AnthropicStreamDecoder::Event event;
    event.kind = AnthropicStreamDecoder::Event::Kind::failed;
    event.error = std::move(error);
    return event;
}

QString unreadableEvent(const QString &why)
{
    return QCoreApplication::translate(
        "AnthropicStreamDecoder", "The reply stream held an event that could not be read: %1")
        .arg(why);
}

} // namespace

AnthropicStreamDecoder::Event AnthropicStreamDecoder::decodeLine(QByteArrayView line)
{
    if (m_ended) {
        return {};
    }
    const SseLine sse = SseLine::classify(line);
    if (sse.kind != SseLine::Kind::Data) {
        return {};
    }
    QJsonParseError parseError {};
    const QJsonDocument document = QJsonDocument::fromJson(sse.value.toByteArray(), &parseError);
    if (parseError.error != QJsonParseError::NoError || !document.isObject()) {
        m_ended = true;
        return failure(ChatError::invalidReply(
            unreadableEvent(parseError.error != QJsonParseError::NoError ? parseError.errorString()
                                                                         : QStringLiteral("not a JSON object"))));
    }
    const QJsonObject object = document.object();
    const QString type = object.value(QLatin1String("type")).toString();
    if (type == QLatin1String("content_block_delta")) {
        const QJsonObject delta = object.value(QLatin1String("delta")).toObject();
        if (delta.value(QLatin1String("type")).toString() != QLatin1String("text_delta")) {
            return {};
        }
        const QJsonValue text = delta.value(QLatin1String("text"));
        if (!text.isString()) {
            m_ended = true;
            return failure(ChatError::invalidReply(unreadableEvent(QStringLiteral("text_delta without text"))));
        }
        return { Event::Kind::text, text.toString(), std::nullopt };
    }
    if (type == QLatin1String("message_stop")) {
        m_ended = true;
        return { Event::Kind::done, {}, std::nullopt };
    }
    if (type == QLatin1String("message_delta")) {
        const QJsonValue reason = object.value(QLatin1String("delta")).toObject().value(QLatin1String("stop_reason"));
        m_sawStopReason = m_sawStopReason || reason.isString();
        return {};
    }
    if (type == QLatin1String("error")) {
        m_ended = true;
        ChatError error;
        error.kind = ChatError::Kind::serviceError;
        error.message = ChatError::serviceMessage(object);
        if (error.message.isEmpty()) {
            error.message = QCoreApplication::translate("AnthropicStreamDecoder", "The service reported an error.");
        }
        return failure(error);
    }
    if (type.isEmpty()) {
        m_ended = true;
        return failure(ChatError::invalidReply(unreadableEvent(QStringLiteral("no event type"))));
    }
    return {};
}

AnthropicStreamDecoder::Event AnthropicStreamDecoder::endOfInput()
{
    if (m_ended) {
        return {};
    }
    m_ended = true;
    if (m_sawStopReason) {
        return { Event::Kind::done, {}, std::nullopt };
    }
    return failure(ChatError::incompleteStream());
}

bool AnthropicStreamDecoder::handle(const Event &event, const Sink &sink) const
{
    if (event.kind == Event::Kind::skipped) {
        return true;
    }
    return sink(event) && !m_ended;
}

void AnthropicStreamDecoder::feed(QByteArrayView bytes, const Sink &sink)
{
    if (m_ended) {
        return;
    }
    const auto status
        = m_lines.feed(bytes, [this, &sink](QByteArrayView line) { return handle(decodeLine(line), sink); });
    if (status == LineSplitter::Status::LineTooLong) {
        m_ended = true;
        sink(failure(ChatError::invalidReply(ChatStreamDecoder::lineTooLong(m_lines.maxLineLength()))));
    }
}

void AnthropicStreamDecoder::finish(const Sink &sink)
{
    if (m_ended) {
        return;
    }
    const auto status = m_lines.finish([this, &sink](QByteArrayView line) { return handle(decodeLine(line), sink); });
    if (status == LineSplitter::Status::Ok && !m_ended) {
        handle(endOfInput(), sink);
    }
}

} // namespace zentrik
