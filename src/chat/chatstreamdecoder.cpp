#include "chat/chatstreamdecoder.h"

#include <QCoreApplication>

namespace zentrik {

namespace {

QString unreadableChunk(const QString &why)
{
    return QCoreApplication::translate("ChatStreamDecoder", "The reply stream held a chunk that could not be read: %1")
        .arg(why);
}

} // namespace

ChatStreamDecoder::Event ChatStreamDecoder::decode(const SseLine &line)
{
    if (line.kind == SseLine::Kind::Done) {
        return done();
    }
    if (line.kind != SseLine::Kind::Data) {
        return {};
    }
    auto data = dataObject(line.value, unreadableChunk);
    if (auto *failed = std::get_if<Event>(&data)) {
        return std::move(*failed);
    }
    const auto &object = std::get<QJsonObject>(data);
    if (object.contains(QLatin1String("error"))) {
        return failure(sseServiceError(object));
    }
    auto chunk = ChatCompletionChunk::fromJson(object);
    if (!chunk) {
        return failure(ChatError::invalidReply(unreadableChunk(QStringLiteral("unexpected fields"))));
    }
    if (chunk->hasFinishReason()) {
        sawEndReason();
    }
    return { Event::Kind::chunk, *std::move(chunk), std::nullopt };
}

} // namespace zentrik
