#pragma once

#include <QByteArrayView>
#include <QJsonObject>
#include <QString>

#include <functional>
#include <variant>

#include "chat/chaterror.h"
#include "net/ssereader.h"

namespace zentrik {

// "A line of the reply is longer than N MiB."
[[nodiscard]] QString sseLineTooLong(qsizetype limit);
// The JSON object of a data line, or why it is none (the parser's reason, or "not a JSON
// object").
[[nodiscard]] std::variant<QJsonObject, QString> sseDataObject(QByteArrayView data);
// The failure an error event or error chunk reports: the service's own message, or a
// general one when it gave none.
[[nodiscard]] ChatError sseServiceError(const QJsonObject &object);

// The part of the streamed-reply decoders that does not depend on the protocol: bytes go
// through the SSE reader, a decoder stops at its first end or failure, an over-long line
// fails the stream instead of growing memory, and input that ends without the protocol's
// end marker is a normal end only once the service said why the reply stopped.
//
// Event needs a `kind` with `skipped`, `done` and `failed`, and an optional ChatError
// `error`. A protocol decoder implements decode() for one classified line and calls
// sawEndReason() when the reply says why it stopped.
template<typename Event> class SseStreamDecoder
{
public:
    // Returns false to stop reading.
    using Sink = std::function<bool(const Event &event)>;

    SseStreamDecoder() = default;
    SseStreamDecoder(const SseStreamDecoder &) = delete;
    SseStreamDecoder &operator=(const SseStreamDecoder &) = delete;
    virtual ~SseStreamDecoder() = default;

    // One line, without its line ending. After `done` or `failed` every line is skipped.
    Event decodeLine(QByteArrayView line) { return m_ended ? Event {} : decode(SseLine::classify(line)); }

    // The input ended without the end marker: a normal end when the reply already said why
    // it finished, otherwise the failure that the reply is incomplete.
    [[nodiscard]] Event endOfInput()
    {
        if (m_ended) {
            return {};
        }
        m_ended = true;
        return m_sawEndReason ? done() : failure(ChatError::incompleteStream());
    }

    // Bytes as they arrive; hands every event that is not `skipped` to sink.
    void feed(QByteArrayView bytes, const Sink &sink)
    {
        if (m_ended) {
            return;
        }
        const auto status = m_reader.feed(bytes, [this, &sink](const SseLine &line) { return handle(line, sink); });
        if (status == SseReader::Status::LineTooLong) {
            m_ended = true;
            sink(failure(ChatError::invalidReply(sseLineTooLong(m_reader.maxLineLength()))));
        }
    }

    // The end of the bytes: the last unterminated line, then endOfInput() unless the stream
    // had already ended.
    void finish(const Sink &sink)
    {
        if (m_ended) {
            return;
        }
        const auto status = m_reader.finish([this, &sink](const SseLine &line) { return handle(line, sink); });
        if (status == SseReader::Status::Ok && !m_ended) {
            sink(endOfInput());
        }
    }

    [[nodiscard]] bool hasEnded() const { return m_ended; }

protected:
    // One classified line of a stream that has not ended.
    virtual Event decode(const SseLine &line) = 0;

    [[nodiscard]] bool endReasonSeen() const { return m_sawEndReason; }
    void sawEndReason() { m_sawEndReason = true; }

    Event done()
    {
        m_ended = true;
        Event event;
        event.kind = Event::Kind::done;
        return event;
    }

    Event failure(const ChatError &error)
    {
        m_ended = true;
        Event event;
        event.kind = Event::Kind::failed;
        event.error = error;
        return event;
    }

    // The JSON object of a data line, or the failure (which ends the stream) worded by
    // `unreadable` from the parser's reason.
    std::variant<QJsonObject, Event> dataObject(QByteArrayView data, QString (*unreadable)(const QString &why))
    {
        auto object = sseDataObject(data);
        if (auto *why = std::get_if<QString>(&object)) {
            return failure(ChatError::invalidReply(unreadable(*why)));
        }
        return std::get<QJsonObject>(std::move(object));
    }

private:
    bool handle(const SseLine &line, const Sink &sink) { return deliver(m_ended ? Event {} : decode(line), sink); }

    [[nodiscard]] bool deliver(const Event &event, const Sink &sink) const
    {
        if (event.kind == Event::Kind::skipped) {
            return true;
        }
        return sink(event) && !m_ended;
    }

    SseReader m_reader;
    bool m_ended = false;
    bool m_sawEndReason = false;
};

} // namespace zentrik
