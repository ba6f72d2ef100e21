#include "tools/generatorviewmodel.h"

#include "model/providerrouting.h"
#include "privacy/piialertviewmodel.h"
#include "privacy/piimanager.h"
#include "render/markdownmodel.h"
#include "tools/assistantfamily.h"
#include "tools/streamcoalescer.h"

namespace zentrik {

GeneratorViewModel::GeneratorViewModel(QObject *parent)
    : QObject(parent)
    , m_outputBlocks(new MarkdownModel(this))
    , m_piiAlert(new PiiAlertViewModel(this))
    , m_coalescer(new StreamCoalescer(this))
{
    m_family = &AssistantFamily::marketing();
    connect(m_coalescer, &StreamCoalescer::flushed, this, &GeneratorViewModel::appendOutput);
}

GeneratorViewModel::~GeneratorViewModel()
{
    if (m_apiManager && m_stream != 0) {
        m_apiManager->stopStream(m_stream);
    }
}

void GeneratorViewModel::setApiManager(APIManager *apiManager)
{
    if (m_apiManager == apiManager) {
        return;
    }
    m_apiManager = apiManager;
    Q_EMIT apiManagerChanged();
    Q_EMIT canGenerateChanged();
}

QString GeneratorViewModel::family() const
{
    return m_family->identifier();
}

void GeneratorViewModel::setFamily(const QString &identifier)
{
    const AssistantFamily *family = AssistantFamily::forIdentifier(identifier);
    if (!family || family == m_family) {
        return;
    }
    m_family = family;
    m_selectedTitle.clear();
    Q_EMIT familyChanged();
    Q_EMIT selectedTitleChanged();
    Q_EMIT canGenerateChanged();
    if (!m_initialTitle.isEmpty()) {
        selectAssistant(m_initialTitle);
    }
}

QString GeneratorViewModel::familyName() const
{
    return m_family->name();
}

QString GeneratorViewModel::pickerPrompt() const
{
    return m_family->pickerPrompt();
}

QStringList GeneratorViewModel::assistantTitles() const
{
    return m_family->table().titles();
}

void GeneratorViewModel::selectAssistant(const QString &title)
{
    const QString selected = m_family->table().contains(title) ? title : QString();
    if (m_selectedTitle == selected) {
        return;
    }
    m_selectedTitle = selected;
    Q_EMIT selectedTitleChanged();
    Q_EMIT canGenerateChanged();
}

void GeneratorViewModel::setInitialTitle(const QString &title)
{
    if (m_initialTitle == title) {
        return;
    }
    m_initialTitle = title;
    Q_EMIT initialTitleChanged();
    if (!title.isEmpty()) {
        selectAssistant(title);
    }
}

QString GeneratorViewModel::assistantDescription() const
{
    const FormAssistant *assistant = m_family->table().find(m_selectedTitle);
    return assistant ? assistant->description : QString();
}

QString GeneratorViewModel::assistantColor() const
{
    const FormAssistant *assistant = m_family->table().find(m_selectedTitle);
    return assistant ? assistant->color : QString();
}

QString GeneratorViewModel::assistantIcon() const
{
    const FormAssistant *assistant = m_family->table().find(m_selectedTitle);
    return assistant ? assistant->icon : QString();
}

QVariantList GeneratorViewModel::fields() const
{
    QVariantList list;
    const FormAssistant *assistant = m_family->table().find(m_selectedTitle);
    if (!assistant) {
        return list;
    }
    for (const InputField &field : assistant->inputs) {
        list.append(
            QVariantMap { { QStringLiteral("label"), field.label }, { QStringLiteral("type"), field.typeName() },
                { QStringLiteral("placeholder"), field.placeholder }, { QStringLiteral("options"), field.options } });
    }
    return list;
}

QVariantMap GeneratorViewModel::inputsMap() const
{
    QVariantMap map;
    for (auto it = m_inputs.cbegin(); it != m_inputs.cend(); ++it) {
        map.insert(it.key(), it.value());
    }
    return map;
}

void GeneratorViewModel::setInput(const QString &label, const QString &value)
{
    auto it = m_inputs.find(label);
    if (it != m_inputs.end() && it.value() == value) {
        return;
    }
    m_inputs.insert(label, value);
    Q_EMIT inputsChanged();
}

QString GeneratorViewModel::composedPrompt() const
{
    return m_family->composePrompt(m_selectedTitle, m_inputs);
}

bool GeneratorViewModel::canGenerate() const
{
    return !m_selectedTitle.isEmpty() && !m_isGenerating && !m_apiManager.isNull();
}

void GeneratorViewModel::generate()
{
    if (m_isGenerating || !m_apiManager) {
        return;
    }
    const QString prompt = composedPrompt();
    if (prompt.isEmpty()) {
        return;
    }
    if (m_family->checksModelAndKey()) {
        if (const std::optional<QString> problem = m_apiManager->preflightMessage()) {
            setErrorMessage(*problem, true);
            return;
        }
    }
    if (m_family->confirmsPersonalInformation()) {
        if (m_piiAlert->checkForPII(prompt)) {
            m_pendingPrompt = prompt;
            return;
        }
        send(prompt);
        return;
    }
    // No dialog on this screen, but personal information still never leaves unredacted.
    send(PIIManager::redact(prompt));
}

void GeneratorViewModel::sendOriginal()
{
    m_piiAlert->setShowAlert(false);
    if (!m_pendingPrompt.isEmpty()) {
        send(std::exchange(m_pendingPrompt, QString()));
    }
}

void GeneratorViewModel::sendRedacted()
{
    m_piiAlert->setShowAlert(false);
    if (!m_pendingPrompt.isEmpty()) {
        m_pendingPrompt.clear();
        send(m_piiAlert->redactedMessage());
    }
}

void GeneratorViewModel::send(const QString &prompt)
{
    if (m_isGenerating || !m_apiManager) {
        return;
    }
    m_coalescer->discard();
    m_output.clear();
    m_outputBlocks->clear();
    m_stopRequested = false;
    m_wasStopped = false;
    Q_EMIT outputChanged();
    setErrorMessage(QString());
    setGenerating(true, true);
    saveRunStart(prompt);
    m_stream = m_apiManager->streamText(
        prompt, this, [this](const QString &piece) { m_coalescer->append(piece); },
        [this](const std::optional<APIError> &error) { finish(error); });
}

void GeneratorViewModel::appendOutput(const QString &text)
{
    m_output += text;
    m_outputBlocks->appendText(text);
    Q_EMIT outputChanged();
}

void GeneratorViewModel::finish(const std::optional<APIError> &error)
{
    m_stream = 0;
    m_coalescer->flush();
    if (m_stopRequested && !error && !m_output.isEmpty()) {
        m_wasStopped = true;
        Q_EMIT outputChanged();
    }
    saveRunReply(error ? MessageEnding::failed : m_wasStopped ? MessageEnding::stopped : MessageEnding::complete);
    setGenerating(false, false);
    if (error) {
        setErrorMessage(tr("Failed to generate content: ") + error->message() + error->detailsLine(),
            error->isFixedInSettings() || error->kind() == APIError::unsupportedModel);
    }
}

void GeneratorViewModel::stop()
{
    if (m_apiManager && m_stream != 0) {
        m_stopRequested = true;
        m_apiManager->stopStream(m_stream);
    }
}

void GeneratorViewModel::setGenerating(bool generating, bool streaming)
{
    if (m_isStreaming != streaming) {
        m_isStreaming = streaming;
        Q_EMIT isStreamingChanged();
    }
    if (m_isGenerating != generating) {
        m_isGenerating = generating;
        Q_EMIT isGeneratingChanged();
        Q_EMIT canGenerateChanged();
    }
}

void GeneratorViewModel::setErrorMessage(const QString &message, bool opensSettings)
{
    opensSettings = opensSettings && !message.isEmpty();
    if (m_errorMessage == message && m_errorOpensSettings == opensSettings) {
        return;
    }
    m_errorMessage = message;
    m_errorOpensSettings = opensSettings;
    Q_EMIT errorMessageChanged();
}

} // namespace zentrik
