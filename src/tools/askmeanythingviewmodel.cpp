#include "tools/askmeanythingviewmodel.h"

#include "history/historytools.h"
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

QString AskMeAnythingViewModel::historyTool() const
{
    return historytool::askMeAnything;
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
    deliver(trimmed, trimmed);
}

void AskMeAnythingViewModel::sendOriginal()
{
    m_piiAlert->setShowAlert(false);
    const QString trimmed = m_newMessage.trimmed();
    if (!trimmed.isEmpty() && !isProcessing()) {
        deliver(trimmed, trimmed);
    }
}

void AskMeAnythingViewModel::sendRedacted()
{
    m_piiAlert->setShowAlert(false);
    if (!m_piiAlert->redactedMessage().isEmpty() && !isProcessing()) {
        deliver(m_newMessage.trimmed(), m_piiAlert->redactedMessage());
    }
}

QString AskMeAnythingViewModel::composePrompt(const QString &text) const
{
    const ConversationSuggestion *suggestion = findSuggestion(askMeAnythingSuggestions(), m_selectedSuggestion);
    return suggestion ? suggestion->prompt + text : text;
}

void AskMeAnythingViewModel::deliver(const QString &typed, const QString &text)
{
    ChatMessageRecord question;
    question.content = text;
    question.typed = typed;
    question.sent = composePrompt(text);
    deliverPrompt(question, question.sent);
}

void AskMeAnythingViewModel::deliverPrompt(ChatMessageRecord question, const QString &prompt)
{
    QList<ChatMessage> earlier;
    const Turn turn = beginTurn(std::move(question), earlier);
    setNewMessage(QString());
    setProcessing(true);
    setErrorMessage(QString());
    request(turn, prompt, earlier);
}

void AskMeAnythingViewModel::request(const Turn &turn, const QString &prompt, const QList<ChatMessage> &earlier)
{
    if (!apiManager()) {
        finishTurn(turn, QString(), MessageEnding::complete);
        return;
    }
    apiManager()->generateText(prompt, earlier, this, [this, turn](const TextResult &result) {
        if (const auto *reply = std::get_if<QString>(&result)) {
            finishTurn(turn, *reply, MessageEnding::complete);
        } else {
            finishTurn(turn, QString(), MessageEnding::complete, std::get<APIError>(result));
        }
    });
}

void AskMeAnythingViewModel::restoreInput(const ChatMessageRecord &question)
{
    setNewMessage(question.typedText());
    QString suggestion;
    for (const ConversationSuggestion &candidate : askMeAnythingSuggestions()) {
        if (!question.sent.isEmpty() && question.sent.startsWith(candidate.prompt)) {
            suggestion = candidate.label;
        }
    }
    setSelectedSuggestion(suggestion);
}

} // namespace zentrik
