#include "chat/chatstreamdecoder.h"

#include "net/sseline.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>

namespace zentrik {

namespace {

ChatStreamDecoder::Event failure(ChatError error)
{
    ChatStreamDecoder::Event event;
    event.kind = ChatStreamDecoder::Event::Kind::failed;
    event.error = std::move(error);
    return event;
}

QString unreadableChunk(const QString &why)
{
    return QCoreApplication::translate("ChatStreamDecoder", "The reply stream held a chunk that could not be read: %1")
        .arg(why);
}

} // namespace

ChatStreamDecoder::Event ChatStreamDecoder::decodeLine(QByteArrayView line)
{
    if (m_ended) {
        return {};
    }
    const SseLine sse = SseLine::classify(line);
    if (sse.kind == SseLine::Kind::Done) {
        m_ended = true;
        return { Event::Kind::done, {}, std::nullopt };
    }
    if (sse.kind != SseLine::Kind::Data) {
        return {};
    }

    QJsonParseError parseError {};
    const QJsonDocument document = QJsonDocument::fromJson(sse.value.toByteArray(), &parseError);
    if (parseError.error != QJsonParseError::NoError || !document.isObject()) {
        m_ended = true;
        return failure(ChatError::invalidReply(
            unreadableChunk(parseError.error != QJsonParseError::NoError ? parseError.errorString()
                                                                         : QStringLiteral("not a JSON object"))));
    }
    const QJsonObject object = document.object();
    if (object.contains(QLatin1String("error"))) {
        m_ended = true;
        ChatError error;
        error.kind = ChatError::Kind::serviceError;
        error.message = ChatError::serviceMessage(object);
        if (error.message.isEmpty()) {
            error.message = QCoreApplication::translate("ChatStreamDecoder", "The service reported an error.");
        }
        return failure(error);
    }
    auto chunk = ChatCompletionChunk::fromJson(object);
    if (!chunk) {
        m_ended = true;
        return failure(ChatError::invalidReply(unreadableChunk(QStringLiteral("unexpected fields"))));
    }
    m_sawFinishReason = m_sawFinishReason || chunk->hasFinishReason();
    return { Event::Kind::chunk, *std::move(chunk), std::nullopt };
}

ChatStreamDecoder::Event ChatStreamDecoder::endOfInput()
{
    if (m_ended) {
        return {};
    }
    m_ended = true;
    if (m_sawFinishReason) {
        return { Event::Kind::done, {}, std::nullopt };
    }
    return failure(ChatError::incompleteStream());
}

bool ChatStreamDecoder::handle(const Event &event, const Sink &sink) const
{
    if (event.kind == Event::Kind::skipped) {
        return true;
    }
    return sink(event) && !m_ended;
}

void ChatStreamDecoder::feed(QByteArrayView bytes, const Sink &sink)
{
    if (m_ended) {
        return;
    }
    const auto status
        = m_lines.feed(bytes, [this, &sink](QByteArrayView line) { return handle(decodeLine(line), sink); });
    if (status == LineSplitter::Status::LineTooLong) {
        m_ended = true;
        sink(failure(ChatError::invalidReply(lineTooLong(m_lines.maxLineLength()))));
    }
}

void ChatStreamDecoder::finish(const Sink &sink)
{
    if (m_ended) {
        return;
    }
    const auto status = m_lines.finish([this, &sink](QByteArrayView line) { return handle(decodeLine(line), sink); });
    if (status == LineSplitter::Status::Ok && !m_ended) {
        handle(endOfInput(), sink);
    }
}

QString ChatStreamDecoder::lineTooLong(qsizetype limit)
{
    return QCoreApplication::translate("ChatStreamDecoder", "A line of the reply is longer than %1 MiB.")
        .arg(limit / (qsizetype(1024) * 1024));
}

} // namespace zentrik
