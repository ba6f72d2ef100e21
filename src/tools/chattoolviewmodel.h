#pragma once

#include "model/apimanager.h"
#include "tools/chatmessagelistmodel.h"

#include <QObject>
#include <QPointer>
#include <QTimer>

namespace zentrik {

// What the chat-style tools share: the shared APIManager, the conversation, the one-line
// error, the busy flag and copying a message.
class ChatToolViewModel : public QObject
{
    Q_OBJECT
    Q_PROPERTY(APIManager *apiManager READ apiManager WRITE setApiManager NOTIFY apiManagerChanged FINAL)
    Q_PROPERTY(ChatMessageListModel *messages READ messages CONSTANT FINAL)
    Q_PROPERTY(QString errorMessage READ errorMessage NOTIFY errorMessageChanged FINAL)
    // Whether the error is one the user fixes in Settings (a missing key, no usable model).
    Q_PROPERTY(bool errorOpensSettings READ errorOpensSettings NOTIFY errorMessageChanged FINAL)
    Q_PROPERTY(bool isProcessing READ isProcessing NOTIFY isProcessingChanged FINAL)
    Q_PROPERTY(QString copiedMessageId READ copiedMessageId NOTIFY copiedMessageIdChanged FINAL)

public:
    explicit ChatToolViewModel(QObject *parent = nullptr);
    ~ChatToolViewModel() override;

    [[nodiscard]] APIManager *apiManager() const { return m_apiManager; }
    void setApiManager(APIManager *apiManager);
    [[nodiscard]] ChatMessageListModel *messages() const { return m_messages; }
    [[nodiscard]] QString errorMessage() const { return m_errorMessage; }
    [[nodiscard]] bool errorOpensSettings() const { return m_errorOpensSettings; }
    [[nodiscard]] bool isProcessing() const { return m_isProcessing; }
    [[nodiscard]] QString copiedMessageId() const;

    // Hands the message's text to copyRequested (a reply cleaned of Markdown) and marks it
    // copied for a while.
    Q_INVOKABLE void copyMessage(const QString &messageId);

    static constexpr int copiedFeedbackMs = 2000;

Q_SIGNALS:
    void apiManagerChanged();
    void errorMessageChanged();
    void isProcessingChanged();
    void copiedMessageIdChanged();
    // The window puts the text on the clipboard.
    void copyRequested(const QString &plainText);

protected:
    void setErrorMessage(const QString &message, bool opensSettings = false);
    // A failed request's message with the connection tip after it, then what the provider
    // said, if anything.
    void showRequestError(const APIError &error);
    void setProcessing(bool processing);

private:
    QPointer<APIManager> m_apiManager;
    ChatMessageListModel *m_messages;
    QString m_errorMessage;
    bool m_errorOpensSettings = false;
    bool m_isProcessing = false;
    QTimer m_copiedTimer;
};

} // namespace zentrik
