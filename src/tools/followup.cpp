#include "tools/followup.h"

#include "tools/chatmessagelistmodel.h"

#include <algorithm>

namespace zentrik {

QList<ChatMessage> earlierMessages(const ChatMessageListModel &messages, int endRow, qsizetype budget)
{
    QList<ChatMessage> newestFirst;
    qsizetype used = 0;
    for (int row = std::min(endRow, messages.count()) - 1; row > 0; --row) {
        const ChatMessageRecord &reply = messages.at(row);
        const ChatMessageRecord &question = messages.at(row - 1);
        if (reply.role != ChatMessageRecord::Role::assistant || question.role != ChatMessageRecord::Role::user) {
            continue;
        }
        const qsizetype size = question.sentText().size() + reply.content.size();
        if (used + size > budget) {
            break;
        }
        used += size;
        newestFirst.append(ChatMessage(ChatMessage::Role::assistant, reply.content));
        newestFirst.append(ChatMessage(ChatMessage::Role::user, question.sentText()));
        --row; // the question is taken
    }
    std::reverse(newestFirst.begin(), newestFirst.end());
    return newestFirst;
}

} // namespace zentrik
