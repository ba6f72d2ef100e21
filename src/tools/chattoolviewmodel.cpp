#include "tools/chattoolviewmodel.h"

#include "history/historytools.h"
#include "tools/chatmessagelistmodel.h"

namespace zentrik {

ChatToolViewModel::ChatToolViewModel(QObject *parent)
    : QObject(parent)
    , m_messages(new ChatMessageListModel(this))
{
    connect(m_messages, &ChatMessageListModel::countChanged, this, &ChatToolViewModel::turnStateChanged);
    connect(this, &ChatToolViewModel::isProcessingChanged, this, &ChatToolViewModel::turnStateChanged);
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

void ChatToolViewModel::setHistory(HistoryService *history)
{
    if (m_history == history) {
        return;
    }
    if (m_history) {
        disconnect(m_history, nullptr, this, nullptr);
    }
    m_history = history;
    if (m_history) {
        connect(m_history, &HistoryService::conversationsRemoved, this, [this](const QStringList &uids, bool all) {
            if (!m_conversation.uid.isEmpty() && (all || uids.contains(m_conversation.uid))) {
                forgetConversation(m_serial);
            }
        });
    }
    if (m_recent) {
        m_recent->setTool(historyTool());
        m_recent->setHistory(history);
    }
    Q_EMIT historyChanged();
}

QString ChatToolViewModel::historyTool() const
{
    return historytool::askMeAnything;
}

void ChatToolViewModel::historyToolChanged()
{
    if (m_recent) {
        m_recent->setTool(historyTool());
    }
}

HistoryListModel *ChatToolViewModel::recentConversations() const
{
    if (!m_recent) {
        m_recent = new HistoryListModel(const_cast<ChatToolViewModel *>(this));
        m_recent->setTool(historyTool());
        m_recent->setHistory(m_history);
    }
    return m_recent;
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

std::optional<QString> ChatToolViewModel::validate(const QString & /*text*/) const
{
    if (!m_apiManager) {
        return tr("Please select a text model in Settings.");
    }
    return m_apiManager->preflightMessage();
}

} // namespace zentrik
