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
    const QString message = composeMessage(typed);
    messages()->append(ChatMessageRecord::Role::user, message);
    setInput(QString());
    setSelectedSuggestion(QString());
    setProcessing(true);
    setErrorMessage(QString());

    const QString outgoing = PIIManager::redact(message);
    if (!streamsReplies(apiManager()->selectedTextModel())) {
        apiManager()->generateText(outgoing, this, [this](const TextResult &result) {
            if (const auto *reply = std::get_if<QString>(&result)) {
                messages()->append(ChatMessageRecord::Role::assistant, *reply);
            } else {
                showRequestError(std::get<APIError>(result));
            }
            setProcessing(false);
        });
        return;
    }
    m_streamedContent.clear();
    Q_EMIT streamedContentChanged();
    setStreaming(true);
    m_stopRequested = false;
    m_stream = apiManager()->streamText(
        outgoing, this, [this](const QString &piece) { m_coalescer->append(piece); },
        [this](const std::optional<APIError> &error) { finishStream(error); });
}

void DevToolViewModel::finishStream(const std::optional<APIError> &error)
{
    m_stream = 0;
    m_coalescer->flush();
    // What arrived stays visible, whether the stream ended, was stopped or failed.
    if (!m_streamedContent.isEmpty()) {
        messages()->append(ChatMessageRecord::Role::assistant, m_streamedContent, m_stopRequested && !error);
        m_streamedContent.clear();
        Q_EMIT streamedContentChanged();
    }
    if (error) {
        showRequestError(*error);
    }
    setStreaming(false);
    setProcessing(false);
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
