#pragma once

#include "model/apimanager.h"
#include "tools/chatmessagelistmodel.h"

#include <QObject>
#include <QPointer>

namespace zentrik {

// What the chat-style tools share: the shared APIManager, the conversation, the one-line
// error and the busy flag.
class ChatToolViewModel : public QObject
{
    Q_OBJECT
    Q_PROPERTY(zentrik::APIManager *apiManager READ apiManager WRITE setApiManager NOTIFY apiManagerChanged FINAL)
    Q_PROPERTY(zentrik::ChatMessageListModel *messages READ messages CONSTANT FINAL)
    Q_PROPERTY(QString errorMessage READ errorMessage NOTIFY errorMessageChanged FINAL)
    // Whether the error is one the user fixes in Settings (a missing key, no usable model).
    Q_PROPERTY(bool errorOpensSettings READ errorOpensSettings NOTIFY errorMessageChanged FINAL)
    Q_PROPERTY(bool isProcessing READ isProcessing NOTIFY isProcessingChanged FINAL)

public:
    explicit ChatToolViewModel(QObject *parent = nullptr);
    ~ChatToolViewModel() override;

    [[nodiscard]] APIManager *apiManager() const { return m_apiManager; }
    void setApiManager(APIManager *apiManager);
    [[nodiscard]] ChatMessageListModel *messages() const { return m_messages; }
    [[nodiscard]] QString errorMessage() const { return m_errorMessage; }
    [[nodiscard]] bool errorOpensSettings() const { return m_errorOpensSettings; }
    [[nodiscard]] bool isProcessing() const { return m_isProcessing; }

Q_SIGNALS:
    void apiManagerChanged();
    void errorMessageChanged();
    void isProcessingChanged();

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
};

} // namespace zentrik
