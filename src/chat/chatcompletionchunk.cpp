#include "chat/chatcompletionchunk.h"

#include <algorithm>

namespace zentrik {

std::optional<QString> ChatCompletionChunk::text() const
{
    if (choices.isEmpty()) {
        return std::nullopt;
    }
    return choices.constFirst().delta.content;
}

bool ChatCompletionChunk::hasFinishReason() const
{
    return std::any_of(
        choices.cbegin(), choices.cend(), [](const Choice &choice) { return choice.finishReason.has_value(); });
}

} // namespace zentrik
