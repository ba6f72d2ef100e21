#pragma once

#include <QString>

#include <optional>

#include "chat/chaterror.h"
#include "chat/ssestreamdecoder.h"

namespace zentrik {

struct AnthropicStreamEvent
{
    enum class Kind { skipped, text, done, failed };
    Kind kind = Kind::skipped;
    QString text;
    std::optional<ChatError> error;
};

// Reads Anthropic's streamed messages: the text comes from content_block_delta events whose
// delta is a text_delta, message_stop ends the stream, an error event fails it with its
// message, and every other event (ping, message_start, content_block_start, …) is skipped.
// A message_delta with a stop_reason makes an input that ends without message_stop a
// normal end. Works on lines from the network or on any byte buffer.
class AnthropicStreamDecoder : public SseStreamDecoder<AnthropicStreamEvent>
{
public:
    using Event = AnthropicStreamEvent;

protected:
    Event decode(const SseLine &line) override;
};

} // namespace zentrik
