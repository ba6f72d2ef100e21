// GeneratorViewModel: its runs in the conversation history.
#include "history/historytools.h"
#include "render/markdownmodel.h"
#include "tools/assistantfamily.h"
#include "tools/generatorviewmodel.h"
#include "tools/streamcoalescer.h"

#include <QDateTime>

namespace zentrik {

void GeneratorViewModel::setHistory(HistoryService *history)
{
    if (m_history == history) {
        return;
    }
    m_history = history;
    Q_EMIT historyChanged();
}

QString GeneratorViewModel::fieldsText() const
{
    const FormAssistant *assistant = m_family->table().find(m_selectedTitle);
    QStringList lines;
    for (auto it = m_inputs.cbegin(); it != m_inputs.cend(); ++it) {
        if (assistant != nullptr && assistant->field(it.key()) != nullptr && !it.value().trimmed().isEmpty()) {
            lines.append(it.key() + QStringLiteral(": ") + it.value());
        }
    }
    return lines.join(QLatin1Char('\n'));
}

void GeneratorViewModel::saveRunStart(const QString &prompt)
{
    const bool saving = m_history != nullptr && m_history->isSaving();
    const QString before = m_run.uid;
    m_run = {};
    if (saving) {
        const FormAssistant *assistant = m_family->table().find(m_selectedTitle);
        GeneratorRun run { m_family->identifier(), m_selectedTitle, {} };
        QString firstValue;
        for (const InputField &field : assistant ? assistant->inputs : QList<InputField>()) {
            const QString value = m_inputs.value(field.label);
            if (!value.trimmed().isEmpty()) {
                run.fields.insert(field.label, value);
                firstValue = firstValue.isEmpty() ? value : firstValue;
            }
        }
        m_run.uid = newHistoryUid();
        m_run.tool = historytool::generator;
        m_run.title = titleFromText(
            firstValue.isEmpty() ? m_selectedTitle : m_selectedTitle + QStringLiteral(": ") + firstValue);
        m_run.createdMs = m_run.updatedMs = QDateTime::currentMSecsSinceEpoch();
        m_run.generator = std::move(run);
        m_runModel = m_apiManager ? m_apiManager->selectedTextModel() : QString();

        StoredMessage form;
        form.uid = newHistoryUid();
        form.text = form.typed = fieldsText();
        form.sent = prompt;
        form.model = m_runModel;
        form.timeMs = m_run.createdMs;
        m_history->saveMessage(m_run, form);
    }
    if (before != m_run.uid) {
        Q_EMIT runIdChanged();
    }
}

void GeneratorViewModel::saveRunReply(MessageEnding ending)
{
    if (!m_history || m_run.uid.isEmpty() || m_output.isEmpty()) {
        return;
    }
    StoredMessage reply;
    reply.uid = newHistoryUid();
    reply.role = MessageRole::assistant;
    reply.text = reply.typed = reply.sent = m_output;
    reply.model = m_runModel;
    reply.timeMs = QDateTime::currentMSecsSinceEpoch();
    reply.ending = ending;
    m_run.updatedMs = reply.timeMs;
    m_history->saveMessage(m_run, reply);
}

void GeneratorViewModel::openRun(const QString &id)
{
    if (!m_history || m_isGenerating) {
        Q_EMIT runOpened(false);
        return;
    }
    m_history->load(id, this, [this](const std::optional<ConversationRecord> &record, const QString &error) {
        const AssistantFamily *family
            = record && record->generator ? AssistantFamily::forIdentifier(record->generator->family) : nullptr;
        if (!family || m_isGenerating) {
            setErrorMessage(record ? tr("That entry is not a generator run.") : error);
            Q_EMIT runOpened(false);
            return;
        }
        setFamily(family->identifier());
        selectAssistant(record->generator->assistant);
        for (auto it = record->generator->fields.cbegin(); it != record->generator->fields.cend(); ++it) {
            setInput(it.key(), it.value());
        }
        m_coalescer->discard();
        m_output.clear();
        m_wasStopped = false;
        for (const StoredMessage &message : record->messages) {
            if (message.role == MessageRole::assistant) {
                m_output = message.text;
                m_wasStopped = message.ending == MessageEnding::stopped;
            }
        }
        m_outputBlocks->setText(m_output);
        m_run = *record;
        m_run.messages.clear();
        setErrorMessage(QString());
        Q_EMIT outputChanged();
        Q_EMIT runIdChanged();
        Q_EMIT runOpened(true);
    });
}

} // namespace zentrik
