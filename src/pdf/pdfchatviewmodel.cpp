#include "pdf/pdfchatviewmodel.h"

#include "privacy/piimanager.h"

namespace zentrik {

PdfChatViewModel::PdfChatViewModel(QObject *parent)
    : AskMeAnythingViewModel(parent)
{ }

bool PdfChatViewModel::open(const QUrl &url)
{
    return openFile(url.isLocalFile() ? url.toLocalFile() : url.toString());
}

bool PdfChatViewModel::openFile(const QString &path)
{
    PdfText text = extractPdfText(path);
    if (!text.ok()) {
        setDocumentError(text.message());
        return false;
    }
    m_text = std::move(text);
    m_source = QUrl::fromLocalFile(path);
    m_summary.reset();
    m_summaryMarkdown.clear();
    messages()->clear();
    setErrorMessage(QString());
    setDocumentError(QString());
    Q_EMIT documentChanged();
    Q_EMIT summaryChanged();
    setCurrentPage(0);
    return true;
}

void PdfChatViewModel::setCurrentPage(int page)
{
    const int bounded = std::clamp(page, 0, std::max(0, pageCount() - 1));
    if (m_currentPage == bounded) {
        return;
    }
    m_currentPage = bounded;
    Q_EMIT currentPageChanged();
}

QList<int> PdfChatViewModel::citedPages(const QString &answer) const
{
    return zentrik::citedPages(answer, pageCount());
}

std::optional<QString> PdfChatViewModel::validate(const QString &text) const
{
    if (!hasDocument()) {
        return tr("Open a PDF first.");
    }
    return AskMeAnythingViewModel::validate(text);
}

QString PdfChatViewModel::questionPrompt(const QString &question) const
{
    const DocumentContext context = buildDocumentContext(m_text.pages, question);
    return pdfQuestionPrompt(m_text.title, m_text.pageCount(), context, question);
}

void PdfChatViewModel::send()
{
    const QString question = newMessage().trimmed();
    if (isProcessing() || m_isSummarizing) {
        return;
    }
    if (question.isEmpty()) {
        if (hasDocument()) {
            setErrorMessage(tr("Type a question about the document first."));
        }
        return;
    }
    if (const std::optional<QString> problem = validate(question)) {
        setErrorMessage(*problem, hasDocument()); // with a document, the problem is the model or key
        return;
    }
    const QString prompt = questionPrompt(question);
    if (piiAlertVM()->checkForPII(prompt)) {
        m_pending = Pending::question;
        m_pendingQuestion = question;
        return;
    }
    deliverPrompt(question, prompt);
}

void PdfChatViewModel::summarize()
{
    if (isProcessing() || m_isSummarizing) {
        return;
    }
    if (const std::optional<QString> problem = validate(QString())) {
        setErrorMessage(*problem, hasDocument()); // with a document, the problem is the model or key
        return;
    }
    const QString prompt
        = pdfSummaryPrompt(m_text.title, m_text.pageCount(), buildDocumentContext(m_text.pages, QString()));
    if (piiAlertVM()->checkForPII(prompt)) {
        m_pending = Pending::summary;
        return;
    }
    requestSummary(prompt);
}

void PdfChatViewModel::sendOriginal()
{
    piiAlertVM()->setShowAlert(false);
    const Pending pending = std::exchange(m_pending, Pending::none);
    if (pending == Pending::question) {
        deliverPrompt(m_pendingQuestion, piiAlertVM()->originalMessage());
    } else if (pending == Pending::summary) {
        requestSummary(piiAlertVM()->originalMessage());
    }
}

void PdfChatViewModel::sendRedacted()
{
    piiAlertVM()->setShowAlert(false);
    const Pending pending = std::exchange(m_pending, Pending::none);
    if (pending == Pending::question) {
        deliverPrompt(PIIManager::redact(m_pendingQuestion), piiAlertVM()->redactedMessage());
    } else if (pending == Pending::summary) {
        requestSummary(piiAlertVM()->redactedMessage());
    }
}

void PdfChatViewModel::requestSummary(const QString &prompt)
{
    if (!apiManager()) {
        return;
    }
    setErrorMessage(QString());
    setSummarizing(true);
    apiManager()->generateText(prompt, this, [this](const TextResult &result) {
        setSummarizing(false);
        if (const auto *error = std::get_if<APIError>(&result)) {
            showRequestError(*error);
            return;
        }
        const auto &reply = std::get<QString>(result);
        m_summary = parsePdfSummary(reply);
        m_summaryMarkdown = m_summary ? QString() : reply;
        Q_EMIT summaryChanged();
    });
}

void PdfChatViewModel::setDocumentError(const QString &message)
{
    if (m_documentError == message) {
        return;
    }
    m_documentError = message;
    Q_EMIT documentErrorChanged();
}

void PdfChatViewModel::setSummarizing(bool summarizing)
{
    if (m_isSummarizing == summarizing) {
        return;
    }
    m_isSummarizing = summarizing;
    Q_EMIT isSummarizingChanged();
}

} // namespace zentrik
