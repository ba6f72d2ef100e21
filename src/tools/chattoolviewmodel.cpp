#include "tools/chattoolviewmodel.h"

#include "tools/chatmessagelistmodel.h"

namespace zentrik {

ChatToolViewModel::ChatToolViewModel(QObject *parent)
    : QObject(parent)
    , m_messages(new ChatMessageListModel(this))
{ }

ChatToolViewModel::~ChatToolViewModel() = default;

void ChatToolViewModel::setApiManager(APIManager *apiManager)
{
    if (m_apiManager == apiManager) {
        return;
    }
    m_apiManager = apiManager;
    Q_EMIT apiManagerChanged();
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
