#pragma once

#include <QByteArrayView>

#include <functional>
#include <optional>

#include "chat/chatcompletionchunk.h"
#include "chat/chaterror.h"
#include "net/linesplitter.h"

namespace zentrik {

// Turns the server-sent events of a streamed chat completion into chunks. Only lines that
// begin with "data: " count; "data: [DONE]" ends the stream; every other line (comments
// such as ": OPENROUTER PROCESSING", event names, blank lines) is skipped. A data line
// whose JSON holds an "error" ends the stream with that error's message, since services
// report failures after the first tokens that way; a data line that is no chunk ends it
// with a failure that says so. Works on lines from the network or on any byte buffer.
class ChatStreamDecoder
{
public:
    struct Event
    {
        enum class Kind { skipped, chunk, done, failed };
        Kind kind = Kind::skipped;
        ChatCompletionChunk chunk;
        std::optional<ChatError> error;
    };
    // Returns false to stop reading.
    using Sink = std::function<bool(const Event &event)>;

    // One line, without its line ending. After `done` or `failed` every line is skipped.
    Event decodeLine(QByteArrayView line);
    // The input ended without "[DONE]": a normal end when a chunk already said why the reply
    // finished, otherwise the failure that the reply is incomplete.
    [[nodiscard]] Event endOfInput();

    // Bytes as they arrive; hands every event that is not `skipped` to sink.
    void feed(QByteArrayView bytes, const Sink &sink);
    // The end of the bytes: the last unterminated line, then endOfInput() unless the stream
    // had already ended.
    void finish(const Sink &sink);

    [[nodiscard]] bool hasEnded() const { return m_ended; }
    [[nodiscard]] bool sawFinishReason() const { return m_sawFinishReason; }

    [[nodiscard]] static QString lineTooLong(qsizetype limit);

private:
    bool handle(const Event &event, const Sink &sink) const;

    LineSplitter m_lines;
    bool m_ended = false;
    bool m_sawFinishReason = false;
};

} // namespace zentrik
