#pragma once

#include <optional>

#include "chat/chatcompletionchunk.h"
#include "chat/chaterror.h"
#include "chat/ssestreamdecoder.h"

namespace zentrik {

struct ChatStreamEvent
{
    enum class Kind { skipped, chunk, done, failed };
    Kind kind = Kind::skipped;
    ChatCompletionChunk chunk;
    std::optional<ChatError> error;
};

// Turns the server-sent events of a streamed chat completion into chunks. Only lines that
// begin with "data: " count; "data: [DONE]" ends the stream; every other line (comments
// such as ": OPENROUTER PROCESSING", event names, blank lines) is skipped. A data line
// whose JSON holds an "error" ends the stream with that error's message, since services
// report failures after the first tokens that way; a data line that is no chunk ends it
// with a failure that says so. Works on lines from the network or on any byte buffer.
class ChatStreamDecoder : public SseStreamDecoder<ChatStreamEvent>
{
public:
    using Event = ChatStreamEvent;

    [[nodiscard]] bool sawFinishReason() const { return endReasonSeen(); }

protected:
    Event decode(const SseLine &line) override;
};

} // namespace zentrik
