// ImageGeneratorViewModel: its runs in the conversation history.
#include "history/historytools.h"
#include "tools/imagegeneratorviewmodel.h"

#include <QDateTime>
#include <QFileInfo>

namespace zentrik {

void ImageGeneratorViewModel::setHistory(HistoryService *history)
{
    if (m_history == history) {
        return;
    }
    m_history = history;
    Q_EMIT historyChanged();
}

void ImageGeneratorViewModel::saveRun(const QString &prompt, const QString &model)
{
    if (!m_history || !m_history->isSaving() || m_png.isEmpty()) {
        return;
    }
    ConversationRecord run;
    run.uid = newHistoryUid();
    run.tool = historytool::imageStudio;
    run.title = titleFromText(prompt);
    run.createdMs = run.updatedMs = QDateTime::currentMSecsSinceEpoch();
    run.image = ImageRun { model, {} }; // the path is where the history writes its copy
    StoredMessage message;
    message.uid = newHistoryUid();
    message.text = message.typed = message.sent = prompt;
    message.model = model;
    message.timeMs = run.createdMs;
    m_history->saveImageRun(run, message, m_png);
}

void ImageGeneratorViewModel::openRun(const QString &id)
{
    if (!m_history || m_isGenerating) {
        Q_EMIT runOpened(false);
        return;
    }
    m_history->load(id, this, [this](const std::optional<ConversationRecord> &record, const QString &error) {
        if (!record || !record->image || m_isGenerating || m_apiManager.isNull()) {
            setErrorMessage(record ? tr("That entry is not an image studio run.") : error);
            Q_EMIT runOpened(false);
            return;
        }
        setPrompt(record->messages.isEmpty() ? record->title : record->messages.first().text);
        const QString picture = record->image->picturePath;
        if (!QFileInfo::exists(picture)) {
            setErrorMessage(tr("The picture is no longer at %1.").arg(picture));
            Q_EMIT runOpened(false);
            return;
        }
        setErrorMessage({});
        setGenerating(true);
        showPicture(QUrl::fromLocalFile(picture).toString(), ++m_generation);
        Q_EMIT runOpened(true);
    });
}

} // namespace zentrik
