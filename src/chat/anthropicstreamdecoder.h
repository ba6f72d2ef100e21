#pragma once

#include <QByteArrayView>
#include <QString>

#include <functional>
#include <optional>

#include "chat/chaterror.h"
#include "net/linesplitter.h"

namespace zentrik {

// Reads Anthropic's streamed messages: the text comes from content_block_delta events whose
// delta is a text_delta, message_stop ends the stream, an error event fails it with its
// message, and every other event (ping, message_start, content_block_start, …) is skipped.
// Works on lines from the network or on any byte buffer.
class AnthropicStreamDecoder
{
public:
    struct Event
    {
        enum class Kind { skipped, text, done, failed };
        Kind kind = Kind::skipped;
        QString text;
        std::optional<ChatError> error;
    };
    using Sink = std::function<bool(const Event &event)>;

    Event decodeLine(QByteArrayView line);
    // The input ended without message_stop: a normal end once the message said why it
    // stopped, otherwise the failure that the reply is incomplete.
    [[nodiscard]] Event endOfInput();

    void feed(QByteArrayView bytes, const Sink &sink);
    void finish(const Sink &sink);

    [[nodiscard]] bool hasEnded() const { return m_ended; }

private:
    bool handle(const Event &event, const Sink &sink) const;

    LineSplitter m_lines;
    bool m_ended = false;
    bool m_sawStopReason = false;
};

} // namespace zentrik
