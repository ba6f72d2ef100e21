#pragma once

#include "pdf/pdfprompts.h"
#include "pdf/pdftext.h"
#include "tools/askmeanythingviewmodel.h"

#include <QUrl>
#include <QtQmlIntegration>

namespace zentrik {

// The "Chat With Your PDFs" screen: the open document, its summary card and a chat about
// its text. Questions carry the document's text (for a long document, the pages that best
// match the question) and ask the model to cite pages. The privacy guard checks the whole
// prompt, the document's text included, before anything is sent. A follow-up carries the
// earlier questions (as sent) and answers; only the newest question carries the document.
class PdfChatViewModel : public zentrik::AskMeAnythingViewModel
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QUrl source READ source NOTIFY documentChanged FINAL)
    Q_PROPERTY(QString documentTitle READ documentTitle NOTIFY documentChanged FINAL)
    Q_PROPERTY(int pageCount READ pageCount NOTIFY documentChanged FINAL)
    Q_PROPERTY(bool hasDocument READ hasDocument NOTIFY documentChanged FINAL)
    Q_PROPERTY(int currentPage READ currentPage WRITE setCurrentPage NOTIFY currentPageChanged FINAL)
    Q_PROPERTY(QString documentError READ documentError NOTIFY documentErrorChanged FINAL)
    // A stored conversation's document that moved or changed since; empty otherwise.
    Q_PROPERTY(QString documentNotice READ documentNotice NOTIFY documentNoticeChanged FINAL)
    Q_PROPERTY(bool isSummarizing READ isSummarizing NOTIFY isSummarizingChanged FINAL)
    Q_PROPERTY(bool hasSummary READ hasSummary NOTIFY summaryChanged FINAL)
    Q_PROPERTY(QString summaryTitle READ summaryTitle NOTIFY summaryChanged FINAL)
    Q_PROPERTY(QString summaryText READ summaryText NOTIFY summaryChanged FINAL)
    Q_PROPERTY(QStringList keyPoints READ keyPoints NOTIFY summaryChanged FINAL)
    // The reply shown as Markdown when it was not the JSON the summary asks for.
    Q_PROPERTY(QString summaryMarkdown READ summaryMarkdown NOTIFY summaryChanged FINAL)

public:
    explicit PdfChatViewModel(QObject *parent = nullptr);

    // Opens a local file (a file: URL or a path). A problem leaves the previous document
    // closed and sets documentError.
    Q_INVOKABLE bool open(const QUrl &url);
    Q_INVOKABLE bool openFile(const QString &path);
    Q_INVOKABLE void summarize();
    // The cited page numbers of an answer, for the links under it.
    [[nodiscard]] Q_INVOKABLE QList<int> citedPages(const QString &answer) const;

    [[nodiscard]] QUrl source() const { return m_source; }
    [[nodiscard]] QString documentTitle() const { return m_text.title; }
    [[nodiscard]] int pageCount() const { return hasDocument() ? m_text.pageCount() : 0; }
    [[nodiscard]] bool hasDocument() const { return !m_source.isEmpty(); }
    [[nodiscard]] const PdfText &text() const { return m_text; }
    [[nodiscard]] int currentPage() const { return m_currentPage; }
    void setCurrentPage(int page);
    [[nodiscard]] QString documentError() const { return m_documentError; }
    [[nodiscard]] QString documentNotice() const { return m_documentNotice; }
    // The SHA-256 of the open document's bytes, in hex.
    [[nodiscard]] QString documentHash() const { return m_documentHash; }
    [[nodiscard]] bool isSummarizing() const { return m_isSummarizing; }
    [[nodiscard]] bool hasSummary() const { return m_summary.has_value() || !m_summaryMarkdown.isEmpty(); }
    [[nodiscard]] QString summaryTitle() const { return m_summary ? m_summary->title : QString(); }
    [[nodiscard]] QString summaryText() const { return m_summary ? m_summary->summary : QString(); }
    [[nodiscard]] QStringList keyPoints() const { return m_summary ? m_summary->keyPoints : QStringList(); }
    [[nodiscard]] QString summaryMarkdown() const { return m_summaryMarkdown; }

    // The prompt a question sends with the current document.
    [[nodiscard]] QString questionPrompt(const QString &question) const;

    void send() override;
    void sendOriginal() override;
    void sendRedacted() override;

    [[nodiscard]] QString historyTool() const override;

Q_SIGNALS:
    void documentChanged();
    void currentPageChanged();
    void documentErrorChanged();
    void documentNoticeChanged();
    void isSummarizingChanged();
    void summaryChanged();

protected:
    [[nodiscard]] std::optional<QString> validate(const QString &text) const override;
    void resend(int row) override;
    void describeConversation(ConversationRecord &conversation) const override;
    void adoptConversation(const ConversationRecord &conversation) override;

private:
    enum class Pending { none, question, summary };

    void requestSummary(const QString &prompt);
    void setDocumentError(const QString &message);
    void setDocumentNotice(const QString &notice);
    // Opens the document; keepConversation leaves the messages (a stored conversation's PDF).
    bool openDocument(const QString &path, bool keepConversation);
    void setSummarizing(bool summarizing);

    PdfText m_text;
    QUrl m_source;
    int m_currentPage = 0;
    QString m_documentError;
    QString m_documentNotice;
    QString m_documentHash;
    // The hash of a stored conversation's document that could not be found: opening that
    // same document later continues the conversation.
    QString m_awaitedHash;
    bool m_isSummarizing = false;
    std::optional<PdfSummary> m_summary;
    QString m_summaryMarkdown;
    Pending m_pending = Pending::none;
    QString m_pendingQuestion;
};

} // namespace zentrik
