// ChatToolViewModel: the conversation's turns, its place in the history, opening a stored
// one, regenerating and editing. The rest is in chattoolviewmodel.cpp.
#include "history/historytools.h"
#include "tools/chattoolviewmodel.h"
#include "tools/followup.h"

#include <QDateTime>

namespace zentrik {

namespace {

StoredMessage toStored(const ChatMessageRecord &record)
{
    StoredMessage message;
    message.uid = record.id;
    message.role = record.role == ChatMessageRecord::Role::user ? MessageRole::user : MessageRole::assistant;
    message.text = record.content;
    message.typed = record.typedText();
    message.sent = record.sentText();
    message.model = record.model;
    message.timeMs = record.timeMs;
    message.ending = record.stopped ? MessageEnding::stopped
        : record.failed             ? MessageEnding::failed
                                    : MessageEnding::complete;
    return message;
}

ChatMessageRecord fromStored(const StoredMessage &message)
{
    ChatMessageRecord record;
    record.id = message.uid;
    record.role
        = message.role == MessageRole::user ? ChatMessageRecord::Role::user : ChatMessageRecord::Role::assistant;
    record.content = message.text;
    record.typed = message.typed == message.text ? QString() : message.typed;
    record.sent = message.sent == message.text ? QString() : message.sent;
    record.model = message.model;
    record.timeMs = message.timeMs;
    record.stopped = message.ending == MessageEnding::stopped;
    record.failed = message.ending == MessageEnding::failed;
    return record;
}

} // namespace

ChatToolViewModel::Turn ChatToolViewModel::beginTurn(ChatMessageRecord question, QList<ChatMessage> &earlier)
{
    if (m_editRow >= 0) {
        dropFrom(std::exchange(m_editRow, -1));
    }
    question.role = ChatMessageRecord::Role::user;
    question.model = m_apiManager ? m_apiManager->selectedTextModel() : QString();
    for (QString *text : { &question.typed, &question.sent }) {
        if (*text == question.content) {
            text->clear();
        }
    }
    earlier = earlierMessagesBefore(m_messages->count());
    const ChatMessageRecord &shown = m_messages->append(std::move(question));
    if (m_conversation.uid.isEmpty() && m_history && m_history->isSaving()) {
        m_conversation.uid = newHistoryUid();
        m_conversation.tool = historyTool();
        m_conversation.title = titleFromText(shown.typedText());
        m_conversation.createdMs = shown.timeMs;
        Q_EMIT conversationChanged();
    }
    Turn turn = currentTurn();
    save(turn.conversation, shown);
    return turn;
}

ChatToolViewModel::Turn ChatToolViewModel::currentTurn() const
{
    Turn turn { m_serial, m_conversation, m_apiManager ? m_apiManager->selectedTextModel() : QString() };
    describeConversation(turn.conversation);
    return turn;
}

void ChatToolViewModel::finishTurn(
    const Turn &turn, const QString &reply, MessageEnding ending, const std::optional<APIError> &error)
{
    if (!reply.isEmpty()) {
        ChatMessageRecord record;
        record.role = ChatMessageRecord::Role::assistant;
        record.content = reply;
        record.stopped = ending == MessageEnding::stopped;
        record.failed = ending == MessageEnding::failed;
        record.model = turn.model;
        if (isCurrent(turn)) {
            save(turn.conversation, m_messages->append(std::move(record)));
        } else {
            // The conversation left the screen while the reply was on its way; it is kept.
            record.id = newHistoryUid();
            record.timeMs = QDateTime::currentMSecsSinceEpoch();
            save(turn.conversation, record);
        }
    }
    if (!isCurrent(turn)) {
        return;
    }
    if (error) {
        showRequestError(*error);
    }
    setProcessing(false);
}

void ChatToolViewModel::save(const ConversationRecord &conversation, const ChatMessageRecord &message)
{
    if (!m_history || conversation.uid.isEmpty()) {
        return;
    }
    ConversationRecord header = conversation;
    header.updatedMs = message.timeMs;
    m_history->saveMessage(header, toStored(message));
}

QList<ChatMessage> ChatToolViewModel::earlierMessagesBefore(int row) const
{
    if (m_history && !m_history->sendEarlierMessages()) {
        return {};
    }
    return earlierMessages(*m_messages, row);
}

int ChatToolViewModel::lastQuestionRow() const
{
    for (int row = m_messages->count() - 1; row >= 0; --row) {
        if (m_messages->at(row).role == ChatMessageRecord::Role::user) {
            return row;
        }
    }
    return -1;
}

void ChatToolViewModel::dropFrom(int row)
{
    QStringList uids;
    for (int index = row; index < m_messages->count(); ++index) {
        uids.append(m_messages->at(index).id);
    }
    m_messages->removeFrom(row);
    if (m_history && !m_conversation.uid.isEmpty()) {
        m_history->removeMessages(m_conversation.uid, uids);
    }
}

bool ChatToolViewModel::canRegenerate() const
{
    return !m_isProcessing && !m_isLoadingConversation && lastQuestionRow() >= 0;
}

bool ChatToolViewModel::canEditLastQuestion() const
{
    return canRegenerate();
}

void ChatToolViewModel::regenerate()
{
    const int row = lastQuestionRow();
    if (!canRegenerate()) {
        return;
    }
    if (const std::optional<QString> problem = validate(m_messages->at(row).typedText())) {
        setErrorMessage(*problem, true);
        return;
    }
    if (m_editRow >= 0) {
        cancelEdit();
    }
    dropFrom(row + 1);
    resend(row);
}

void ChatToolViewModel::resend(int row)
{
    setErrorMessage(QString());
    setProcessing(true);
    request(currentTurn(), m_messages->at(row).sentText(), earlierMessagesBefore(row));
}

void ChatToolViewModel::request(const Turn &turn, const QString & /*prompt*/, const QList<ChatMessage> & /*earlier*/)
{
    finishTurn(turn, QString(), MessageEnding::complete);
}

void ChatToolViewModel::editLastQuestion()
{
    if (!canEditLastQuestion()) {
        return;
    }
    m_editRow = lastQuestionRow();
    restoreInput(m_messages->at(m_editRow));
    Q_EMIT turnStateChanged();
}

void ChatToolViewModel::cancelEdit()
{
    if (m_editRow < 0) {
        return;
    }
    m_editRow = -1;
    restoreInput({});
    Q_EMIT turnStateChanged();
}

void ChatToolViewModel::restoreInput(const ChatMessageRecord & /*question*/)
{ }

void ChatToolViewModel::describeConversation(ConversationRecord & /*conversation*/) const
{ }

void ChatToolViewModel::adoptConversation(const ConversationRecord & /*conversation*/)
{ }

void ChatToolViewModel::leaveConversation()
{ }

void ChatToolViewModel::forgetConversation(quint64 serial)
{
    if (serial != m_serial) {
        return;
    }
    leaveConversation();
    ++m_serial;
    m_conversation = {};
    m_editRow = -1;
    m_messages->clear();
    setErrorMessage(QString());
    setProcessing(false);
    Q_EMIT conversationChanged();
    Q_EMIT turnStateChanged();
}

void ChatToolViewModel::newChat()
{
    forgetConversation(m_serial);
}

void ChatToolViewModel::openConversation(const QString &id)
{
    if (!m_history) {
        setErrorMessage(tr("Conversation history is not available here."));
        Q_EMIT conversationOpened(false);
        return;
    }
    forgetConversation(m_serial);
    setLoadingConversation(true);
    const quint64 serial = m_serial;
    m_history->load(id, this, [this, serial](const std::optional<ConversationRecord> &record, const QString &error) {
        if (serial != m_serial) {
            return; // another conversation took the screen meanwhile
        }
        setLoadingConversation(false);
        if (!record || record->tool != historyTool()) {
            setErrorMessage(
                record ? tr("That conversation belongs to %1.").arg(historytool::displayName(record->tool)) : error);
            Q_EMIT conversationOpened(false);
            return;
        }
        QList<ChatMessageRecord> records;
        for (const StoredMessage &message : record->messages) {
            records.append(fromStored(message));
        }
        m_messages->setRecords(records);
        m_conversation = *record;
        m_conversation.messages.clear();
        adoptConversation(*record);
        Q_EMIT conversationChanged();
        Q_EMIT turnStateChanged();
        Q_EMIT conversationOpened(true);
    });
}

void ChatToolViewModel::setLoadingConversation(bool loading)
{
    if (m_isLoadingConversation == loading) {
        return;
    }
    m_isLoadingConversation = loading;
    Q_EMIT isLoadingConversationChanged();
    Q_EMIT turnStateChanged();
}

} // namespace zentrik
