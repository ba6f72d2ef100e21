#include "tools/devtoolviewmodel.h"

#include "privacy/piimanager.h"
#include "tools/chatmessagelistmodel.h"
#include "tools/conversationsuggestions.h"
#include "tools/streamcoalescer.h"

namespace zentrik {

namespace {
const QString debuggerTool = QStringLiteral("debugger");
const QString sampleDataTool = QStringLiteral("sampleData");
} // namespace

DevToolViewModel::DevToolViewModel(QObject *parent)
    : ChatToolViewModel(parent)
    , m_coalescer(new StreamCoalescer(this))
{
    connect(m_coalescer, &StreamCoalescer::flushed, this, [this](const QString &text) {
        m_streamedContent += text;
        Q_EMIT streamedContentChanged();
    });
    connect(this, &ChatToolViewModel::isProcessingChanged, this, &DevToolViewModel::buttonTextChanged);
}

DevToolViewModel::~DevToolViewModel()
{
    if (apiManager() && m_stream != 0) {
        apiManager()->stopStream(m_stream);
    }
}

void DevToolViewModel::setTool(const QString &tool)
{
    if (m_tool == tool || (tool != debuggerTool && tool != sampleDataTool)) {
        return;
    }
    m_tool = tool;
    m_selected = nullptr;
    historyToolChanged();
    Q_EMIT toolChanged();
    Q_EMIT selectedSuggestionChanged();
    Q_EMIT buttonTextChanged();
}

void DevToolViewModel::setInput(const QString &text)
{
    if (m_input == text) {
        return;
    }
    m_input = text;
    Q_EMIT inputChanged();
}

const QList<ConversationSuggestion> &DevToolViewModel::table() const
{
    return m_tool == sampleDataTool ? sampleDataFormats() : debuggerSuggestions();
}

QString DevToolViewModel::selectedSuggestion() const
{
    return m_selected ? m_selected->label : QString();
}

void DevToolViewModel::setSelectedSuggestion(const QString &keyOrLabel)
{
    const ConversationSuggestion *selected = keyOrLabel.isEmpty() ? nullptr : findSuggestion(table(), keyOrLabel);
    if (m_selected == selected) {
        return;
    }
    m_selected = selected;
    Q_EMIT selectedSuggestionChanged();
}

void DevToolViewModel::toggleSuggestion(const QString &label)
{
    setSelectedSuggestion(selectedSuggestion() == label ? QString() : label);
}

QStringList DevToolViewModel::suggestions() const
{
    QStringList labels;
    for (const ConversationSuggestion &suggestion : table()) {
        labels.append(suggestion.label);
    }
    return labels;
}

QString DevToolViewModel::buttonText() const
{
    const bool debugger = m_tool == debuggerTool;
    if (m_isStreaming) {
        return tr("Streaming...");
    }
    if (isProcessing()) {
        return debugger ? tr("Processing...") : tr("Generating...");
    }
    return debugger ? tr("Send") : tr("Generate");
}

QString DevToolViewModel::buttonSymbol() const
{
    return m_tool == debuggerTool ? QStringLiteral("paperplane.fill") : QStringLiteral("gear");
}

QString DevToolViewModel::composeMessage(const QString &input) const
{
    return m_selected ? m_selected->prompt + QStringLiteral("\n\n") + input : input;
}

bool DevToolViewModel::streamsReplies(const QString &modelId)
{
    return modelId.contains(QStringLiteral(":free")) || modelId.startsWith(QStringLiteral("gpt-"));
}

void DevToolViewModel::send()
{
    const QString typed = m_input.trimmed();
    if (typed.isEmpty() || isProcessing() || !apiManager()) {
        return;
    }
    // Nothing is shown as sent, and the input stays, when the model or its key is missing.
    if (const std::optional<QString> problem = apiManager()->preflightMessage()) {
        setErrorMessage(*problem);
        return;
    }
    ChatMessageRecord question;
    question.content = composeMessage(typed);
    question.typed = typed;
    question.sent = PIIManager::redact(question.content);
    QList<ChatMessage> earlier;
    const Turn turn = beginTurn(question, earlier);
    setInput(QString());
    setSelectedSuggestion(QString());
    setProcessing(true);
    setErrorMessage(QString());
    request(turn, question.sent, earlier);
}

void DevToolViewModel::request(const Turn &turn, const QString &prompt, const QList<ChatMessage> &earlier)
{
    if (!streamsReplies(turn.model)) {
        apiManager()->generateText(prompt, earlier, this, [this, turn](const TextResult &result) {
            if (const auto *reply = std::get_if<QString>(&result)) {
                finishTurn(turn, *reply, MessageEnding::complete);
            } else {
                finishTurn(turn, QString(), MessageEnding::complete, std::get<APIError>(result));
            }
        });
        return;
    }
    m_streamedContent.clear();
    Q_EMIT streamedContentChanged();
    setStreaming(true);
    m_stopRequested = false;
    m_streamTurn = turn;
    m_stream = apiManager()->streamText(
        prompt, earlier, this, [this](const QString &piece) { m_coalescer->append(piece); },
        [this](const std::optional<APIError> &error) { finishStream(error); });
}

void DevToolViewModel::finishStream(const std::optional<APIError> &error)
{
    m_stream = 0;
    m_coalescer->flush();
    // What arrived stays, whether the stream ended, was stopped or failed.
    const QString reply = std::exchange(m_streamedContent, QString());
    Q_EMIT streamedContentChanged();
    const MessageEnding ending = error ? MessageEnding::failed
        : m_stopRequested              ? MessageEnding::stopped
                                       : MessageEnding::complete;
    setStreaming(false);
    finishTurn(m_streamTurn, reply, ending, error);
}

void DevToolViewModel::restoreInput(const ChatMessageRecord &question)
{
    const QString typed = question.typedText();
    const ConversationSuggestion *chosen = nullptr;
    for (const ConversationSuggestion &suggestion : table()) {
        if (question.content == suggestion.prompt + QStringLiteral("\n\n") + typed) {
            chosen = &suggestion;
        }
    }
    setInput(typed);
    setSelectedSuggestion(chosen ? chosen->label : QString());
}

void DevToolViewModel::leaveConversation()
{
    stop(); // the part that arrived is kept, marked as stopped
}

void DevToolViewModel::stop()
{
    if (apiManager() && m_stream != 0) {
        m_stopRequested = true;
        apiManager()->stopStream(m_stream);
    }
}

void DevToolViewModel::setStreaming(bool streaming)
{
    if (m_isStreaming == streaming) {
        return;
    }
    m_isStreaming = streaming;
    Q_EMIT isStreamingChanged();
    Q_EMIT buttonTextChanged();
}

} // namespace zentrik
