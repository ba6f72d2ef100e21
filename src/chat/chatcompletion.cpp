#include "chat/chatcompletion.h"

namespace zentrik {

ChatFinishReason chatFinishReasonFromString(const QString &text)
{
    if (text == QLatin1String("stop")) {
        return ChatFinishReason::stop;
    }
    if (text == QLatin1String("length")) {
        return ChatFinishReason::length;
    }
    if (text == QLatin1String("tool_calls")) {
        return ChatFinishReason::toolCalls;
    }
    if (text == QLatin1String("content_filter")) {
        return ChatFinishReason::contentFilter;
    }
    return ChatFinishReason::other;
}

} // namespace zentrik
