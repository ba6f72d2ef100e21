#pragma once

#include "chat/chatmessage.h"

#include <QList>

namespace zentrik {

class ChatMessageListModel;

// How much of a conversation a follow-up question carries, in characters of earlier text.
inline constexpr qsizetype followUpBudget = 24000;

// The earlier messages a send carries, as they went out: each question as it was sent (a
// suggestion's prompt before it, redacted when the user chose so) and each reply as it
// arrived. Only whole exchanges, a question and the reply that follows it, before `endRow`:
// a question left without a reply is skipped, so the roles alternate as every provider
// requires. Taken from the newest back while they fit in `budget` (the oldest go first),
// then given in conversation order. The message being sent is not counted: it always goes
// whole.
[[nodiscard]] QList<ChatMessage> earlierMessages(
    const ChatMessageListModel &messages, int endRow, qsizetype budget = followUpBudget);

} // namespace zentrik
