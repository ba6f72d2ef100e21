#include "tools/askmeanythingviewmodel.h"

#include "privacy/piialertviewmodel.h"
#include "tools/chatmessagelistmodel.h"
#include "tools/conversationsuggestions.h"

namespace zentrik {

AskMeAnythingViewModel::AskMeAnythingViewModel(QObject *parent)
    : ChatToolViewModel(parent)
    , m_piiAlert(new PiiAlertViewModel(this))
{ }

void AskMeAnythingViewModel::setNewMessage(const QString &text)
{
    if (m_newMessage == text) {
        return;
    }
    m_newMessage = text;
    Q_EMIT newMessageChanged();
}

void AskMeAnythingViewModel::setSelectedSuggestion(const QString &label)
{
    const QString selected = findSuggestion(askMeAnythingSuggestions(), label) ? label : QString();
    if (m_selectedSuggestion == selected) {
        return;
    }
    m_selectedSuggestion = selected;
    Q_EMIT selectedSuggestionChanged();
}

void AskMeAnythingViewModel::toggleSuggestion(const QString &label)
{
    setSelectedSuggestion(m_selectedSuggestion == label ? QString() : label);
}

QStringList AskMeAnythingViewModel::suggestions()
{
    QStringList labels;
    for (const ConversationSuggestion &suggestion : askMeAnythingSuggestions()) {
        labels.append(suggestion.label);
    }
    return labels;
}

std::optional<QString> AskMeAnythingViewModel::validate(const QString & /*text*/) const
{
    if (!apiManager()) {
        return tr("Please select a text model in Settings.");
    }
    return apiManager()->preflightMessage();
}

void AskMeAnythingViewModel::send()
{
    const QString trimmed = m_newMessage.trimmed();
    if (trimmed.isEmpty() || isProcessing()) {
        return;
    }
    if (const std::optional<QString> problem = validate(trimmed)) {
        setErrorMessage(*problem, true);
        return;
    }
    if (m_piiAlert->checkForPII(trimmed)) {
        return; // the input stays until the user chooses
    }
    deliver(trimmed);
}

void AskMeAnythingViewModel::sendOriginal()
{
    m_piiAlert->setShowAlert(false);
    const QString trimmed = m_newMessage.trimmed();
    if (!trimmed.isEmpty() && !isProcessing()) {
        deliver(trimmed);
    }
}

void AskMeAnythingViewModel::sendRedacted()
{
    m_piiAlert->setShowAlert(false);
    if (!m_piiAlert->redactedMessage().isEmpty() && !isProcessing()) {
        deliver(m_piiAlert->redactedMessage());
    }
}

QString AskMeAnythingViewModel::composePrompt(const QString &text) const
{
    const ConversationSuggestion *suggestion = findSuggestion(askMeAnythingSuggestions(), m_selectedSuggestion);
    return suggestion ? suggestion->prompt + text : text;
}

void AskMeAnythingViewModel::deliver(const QString &text)
{
    deliverPrompt(text, composePrompt(text));
}

void AskMeAnythingViewModel::deliverPrompt(const QString &shown, const QString &prompt)
{
    messages()->append(ChatMessageRecord::Role::user, shown);
    setNewMessage(QString());
    setProcessing(true);
    setErrorMessage(QString());
    request(prompt);
}

void AskMeAnythingViewModel::request(const QString &prompt)
{
    if (!apiManager()) {
        setProcessing(false);
        return;
    }
    apiManager()->generateText(prompt, this, [this](const TextResult &result) {
        if (const auto *reply = std::get_if<QString>(&result)) {
            messages()->append(ChatMessageRecord::Role::assistant, *reply);
        } else {
            showRequestError(std::get<APIError>(result));
        }
        setProcessing(false);
    });
}

} // namespace zentrik
