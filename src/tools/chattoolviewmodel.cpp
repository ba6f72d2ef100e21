#include "tools/chattoolviewmodel.h"

#include "render/markdownstrip.h"
#include "tools/chatmessagelistmodel.h"

namespace zentrik {

ChatToolViewModel::ChatToolViewModel(QObject *parent)
    : QObject(parent)
    , m_messages(new ChatMessageListModel(this))
{
    m_copiedTimer.setSingleShot(true);
    m_copiedTimer.setInterval(copiedFeedbackMs);
    connect(&m_copiedTimer, &QTimer::timeout, this, [this] {
        m_messages->setCopiedId(QString());
        Q_EMIT copiedMessageIdChanged();
    });
}

ChatToolViewModel::~ChatToolViewModel() = default;

void ChatToolViewModel::setApiManager(APIManager *apiManager)
{
    if (m_apiManager == apiManager) {
        return;
    }
    m_apiManager = apiManager;
    Q_EMIT apiManagerChanged();
}

QString ChatToolViewModel::copiedMessageId() const
{
    return m_messages->copiedId();
}

void ChatToolViewModel::copyMessage(const QString &messageId)
{
    const int row = m_messages->indexOf(messageId);
    if (row < 0) {
        return;
    }
    const ChatMessageRecord &message = m_messages->at(row);
    Q_EMIT copyRequested(
        message.role == ChatMessageRecord::Role::assistant ? stripMarkdown(message.content) : message.content);
    m_messages->setCopiedId(messageId);
    Q_EMIT copiedMessageIdChanged();
    m_copiedTimer.start();
}

void ChatToolViewModel::setErrorMessage(const QString &message, bool opensSettings)
{
    opensSettings = opensSettings && !message.isEmpty();
    if (m_errorMessage == message && m_errorOpensSettings == opensSettings) {
        return;
    }
    m_errorMessage = message;
    m_errorOpensSettings = opensSettings;
    Q_EMIT errorMessageChanged();
}

void ChatToolViewModel::showRequestError(const APIError &error)
{
    setErrorMessage(error.message() + connectionTip() + error.detailsLine(),
        error.isFixedInSettings() || error.kind() == APIError::unsupportedModel);
}

void ChatToolViewModel::setProcessing(bool processing)
{
    if (m_isProcessing == processing) {
        return;
    }
    m_isProcessing = processing;
    Q_EMIT isProcessingChanged();
}

} // namespace zentrik
