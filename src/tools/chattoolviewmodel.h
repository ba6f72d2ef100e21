#pragma once

#include "history/historylistmodel.h"
#include "history/historyservice.h"
#include "model/apimanager.h"
#include "tools/chatmessagelistmodel.h"

#include <QObject>
#include <QPointer>
#include <QtQmlIntegration>

namespace zentrik {

// What the chat-style tools share: the shared APIManager, the conversation, the one-line
// error and the busy flag; and the conversation's life in the history:
// each message is saved as it is shown, a follow-up carries the earlier exchanges, a stored
// conversation can be opened and continued, the last reply regenerated and the last
// question edited and sent again.
class ChatToolViewModel : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("the base of the chat screens' view models")
    Q_PROPERTY(zentrik::APIManager *apiManager READ apiManager WRITE setApiManager NOTIFY apiManagerChanged FINAL)
    Q_PROPERTY(zentrik::ChatMessageListModel *messages READ messages CONSTANT FINAL)
    Q_PROPERTY(QString errorMessage READ errorMessage NOTIFY errorMessageChanged FINAL)
    // Whether the error is one the user fixes in Settings (a missing key, no usable model).
    Q_PROPERTY(bool errorOpensSettings READ errorOpensSettings NOTIFY errorMessageChanged FINAL)
    Q_PROPERTY(bool isProcessing READ isProcessing NOTIFY isProcessingChanged FINAL)
    // Where conversations are saved and opened from; none keeps nothing.
    Q_PROPERTY(zentrik::HistoryService *history READ history WRITE setHistory NOTIFY historyChanged FINAL)
    // The stored id of the conversation on screen; empty until its first message is saved.
    Q_PROPERTY(QString conversationId READ conversationId NOTIFY conversationChanged FINAL)
    Q_PROPERTY(bool isLoadingConversation READ isLoadingConversation NOTIFY isLoadingConversationChanged FINAL)
    Q_PROPERTY(bool canRegenerate READ canRegenerate NOTIFY turnStateChanged FINAL)
    Q_PROPERTY(bool canEditLastQuestion READ canEditLastQuestion NOTIFY turnStateChanged FINAL)
    Q_PROPERTY(bool isEditingLastQuestion READ isEditingLastQuestion NOTIFY turnStateChanged FINAL)
    // This tool's stored conversations, the newest first.
    Q_PROPERTY(zentrik::HistoryListModel *recentConversations READ recentConversations CONSTANT FINAL)

public:
    explicit ChatToolViewModel(QObject *parent = nullptr);
    ~ChatToolViewModel() override;

    [[nodiscard]] APIManager *apiManager() const { return m_apiManager; }
    void setApiManager(APIManager *apiManager);
    [[nodiscard]] ChatMessageListModel *messages() const { return m_messages; }
    [[nodiscard]] QString errorMessage() const { return m_errorMessage; }
    [[nodiscard]] bool errorOpensSettings() const { return m_errorOpensSettings; }
    [[nodiscard]] bool isProcessing() const { return m_isProcessing; }
    [[nodiscard]] HistoryService *history() const { return m_history; }
    void setHistory(HistoryService *history);
    [[nodiscard]] QString conversationId() const { return m_conversation.uid; }
    [[nodiscard]] bool isLoadingConversation() const { return m_isLoadingConversation; }
    [[nodiscard]] bool canRegenerate() const;
    [[nodiscard]] bool canEditLastQuestion() const;
    [[nodiscard]] bool isEditingLastQuestion() const { return m_editRow >= 0; }
    // Made when first asked for, so that nothing reads the history for a list no one shows.
    [[nodiscard]] HistoryListModel *recentConversations() const;

    // An empty conversation; a reply still under way is saved where it belongs.
    Q_INVOKABLE void newChat();
    // Shows a stored conversation of this tool (by id or number) to go on with it;
    // conversationOpened() follows.
    Q_INVOKABLE void openConversation(const QString &id);
    // Asks again for the last reply (or for the reply a failed request never gave).
    Q_INVOKABLE void regenerate();
    // Puts the last question back in the input; the next send replaces it and its reply.
    Q_INVOKABLE void editLastQuestion();
    Q_INVOKABLE void cancelEdit();

    // The tool's name in the history (see history/historytools.h).
    [[nodiscard]] virtual QString historyTool() const;

Q_SIGNALS:
    void apiManagerChanged();
    void errorMessageChanged();
    void isProcessingChanged();
    void historyChanged();
    void conversationChanged();
    void isLoadingConversationChanged();
    void turnStateChanged();
    void conversationOpened(bool succeeded);

protected:
    // One question and the reply it waits for, tied to the conversation it was asked in.
    struct Turn
    {
        quint64 serial = 0;
        ConversationRecord conversation;
        QString model;
    };

    void setErrorMessage(const QString &message, bool opensSettings = false);
    // A failed request's message with the connection tip after it, then what the provider
    // said, if anything.
    void showRequestError(const APIError &error);
    void setProcessing(bool processing);

    // Shows and saves the question (ending an edit first: the edited question and its reply
    // go) and gives the earlier messages it is to carry.
    Turn beginTurn(ChatMessageRecord question, QList<ChatMessage> &earlier);
    // The turn's conversation is still the one on screen.
    [[nodiscard]] bool isCurrent(const Turn &turn) const { return turn.serial == m_serial; }
    // Ends the turn: a reply with text is saved in its conversation and shown if that is
    // still on screen, where the error shows too and the tool is free again.
    void finishTurn(
        const Turn &turn, const QString &reply, MessageEnding ending, const std::optional<APIError> &error = {});
    // A turn for asking again in the conversation on screen.
    [[nodiscard]] Turn currentTurn() const;
    [[nodiscard]] QList<ChatMessage> earlierMessagesBefore(int row) const;
    // Removes the messages from `row` on, here and in the history.
    void dropFrom(int row);
    [[nodiscard]] int lastQuestionRow() const;

    // Checks before anything is sent; the message to show, or nothing.
    [[nodiscard]] virtual std::optional<QString> validate(const QString &text) const;
    // Sends the prompt with the earlier messages for the turn.
    virtual void request(const Turn &turn, const QString &prompt, const QList<ChatMessage> &earlier);
    // Sends the question at `row` again, its reply already gone.
    virtual void resend(int row);
    // Fills the input with an earlier question to edit (the empty text clears it).
    virtual void restoreInput(const ChatMessageRecord &question);
    // What the tool adds to a stored conversation (the PDF chat: its document).
    virtual void describeConversation(ConversationRecord &conversation) const;
    // Takes over a stored conversation's tool state (the PDF chat opens its document).
    virtual void adoptConversation(const ConversationRecord &conversation);
    // Ends what runs for the conversation on screen before another takes its place.
    virtual void leaveConversation();
    // The tool's name changed (the developer tools switch between two).
    void historyToolChanged();

private:
    void save(const ConversationRecord &conversation, const ChatMessageRecord &message);
    void forgetConversation(quint64 serial);
    void setLoadingConversation(bool loading);

    QPointer<APIManager> m_apiManager;
    QPointer<HistoryService> m_history;
    ChatMessageListModel *m_messages;
    mutable HistoryListModel *m_recent = nullptr;
    QString m_errorMessage;
    bool m_errorOpensSettings = false;
    bool m_isProcessing = false;
    bool m_isLoadingConversation = false;
    // The conversation on screen: uid empty until it is saved. The serial changes with every
    // new or opened conversation, so a late reply finds out whether it is still on screen.
    ConversationRecord m_conversation;
    quint64 m_serial = 1;
    int m_editRow = -1;
};

} // namespace zentrik
