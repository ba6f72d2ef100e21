#include "pdf/pdfchatviewmodel.h"

#include "history/historytools.h"
#include "privacy/piimanager.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>

namespace zentrik {

PdfChatViewModel::PdfChatViewModel(QObject *parent)
    : AskMeAnythingViewModel(parent)
{ }

bool PdfChatViewModel::open(const QUrl &url)
{
    return openFile(url.isLocalFile() ? url.toLocalFile() : url.toString());
}

namespace {

QString sha256Of(const QString &path)
{
    QFile file(path);
    QCryptographicHash hash(QCryptographicHash::Sha256);
    if (!file.open(QIODevice::ReadOnly) || !hash.addData(&file)) {
        return {};
    }
    return QString::fromLatin1(hash.result().toHex());
}

} // namespace

QString PdfChatViewModel::historyTool() const
{
    return historytool::pdfChat;
}

bool PdfChatViewModel::openFile(const QString &path)
{
    const bool continues = !m_awaitedHash.isEmpty() && sha256Of(path) == m_awaitedHash;
    return openDocument(path, continues);
}

bool PdfChatViewModel::openDocument(const QString &path, bool keepConversation)
{
    PdfText text = extractPdfText(path);
    if (!text.ok()) {
        setDocumentError(text.message());
        return false;
    }
    if (!keepConversation) {
        newChat();
    }
    m_awaitedHash.clear();
    m_text = std::move(text);
    m_source = QUrl::fromLocalFile(QFileInfo(path).absoluteFilePath());
    m_documentHash = sha256Of(path);
    m_summary.reset();
    m_summaryMarkdown.clear();
    setErrorMessage(QString());
    setDocumentError(QString());
    setDocumentNotice(QString());
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
    ChatMessageRecord record;
    record.content = question;
    deliverPrompt(record, prompt);
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
        ChatMessageRecord record;
        record.content = m_pendingQuestion;
        deliverPrompt(record, piiAlertVM()->originalMessage());
    } else if (pending == Pending::summary) {
        requestSummary(piiAlertVM()->originalMessage());
    }
}

void PdfChatViewModel::sendRedacted()
{
    piiAlertVM()->setShowAlert(false);
    const Pending pending = std::exchange(m_pending, Pending::none);
    if (pending == Pending::question) {
        // The question goes into the history as sent, without the document's text: a
        // follow-up carries the earlier questions, and only the newest carries the pages.
        ChatMessageRecord record;
        record.content = PIIManager::redact(m_pendingQuestion);
        record.typed = m_pendingQuestion;
        deliverPrompt(record, piiAlertVM()->redactedMessage());
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

void PdfChatViewModel::resend(int row)
{
    // The document's pages go with the question again, so it is sent as a new one would be.
    const QString question = messages()->at(row).typedText();
    dropFrom(row);
    setNewMessage(question);
    send();
}

void PdfChatViewModel::describeConversation(ConversationRecord &conversation) const
{
    conversation.pdfPath = m_source.toLocalFile();
    conversation.pdfSha256 = m_documentHash;
}

void PdfChatViewModel::adoptConversation(const ConversationRecord &conversation)
{
    const QString path = conversation.pdfPath;
    if (path.isEmpty()) {
        return;
    }
    if (!QFileInfo::exists(path)) {
        m_source.clear();
        m_text = {};
        m_documentHash.clear();
        m_awaitedHash = conversation.pdfSha256;
        Q_EMIT documentChanged();
        setDocumentNotice(tr("The PDF is no longer at %1; open it again to go on.").arg(path));
        return;
    }
    const bool changed = sha256Of(path) != conversation.pdfSha256;
    if (openDocument(path, true) && changed) {
        setDocumentNotice(tr("%1 has changed since this conversation; answers now come from its current text.")
                              .arg(QFileInfo(path).fileName()));
    }
}

void PdfChatViewModel::setDocumentNotice(const QString &notice)
{
    if (m_documentNotice == notice) {
        return;
    }
    m_documentNotice = notice;
    Q_EMIT documentNoticeChanged();
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
