#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace zentrik {

// The part of a document that goes with a request: whole when it fits the budget,
// otherwise the pages that best match the question, each under its page number.
struct DocumentContext
{
    QString text;
    QList<int> pageNumbers; // 1-based, in document order
    bool complete = true; // every page is included
};

inline constexpr qsizetype pdfContextBudget = 60000;

// Pages marked "--- Page N ---". When the document exceeds `budget` characters the pages
// are ranked against `question` (for a summary, with no question, the leading pages are
// taken) and the best are kept until the budget is spent; a single page larger than the
// budget is cut at it.
[[nodiscard]] DocumentContext buildDocumentContext(
    const QStringList &pages, const QString &question, qsizetype budget = pdfContextBudget);

[[nodiscard]] QString pdfSummaryPrompt(const QString &title, int pageCount, const DocumentContext &context);
[[nodiscard]] QString pdfQuestionPrompt(
    const QString &title, int pageCount, const DocumentContext &context, const QString &question);

// The summary card: a title, a brief summary and three to five key points.
struct PdfSummary
{
    QString title;
    QString summary;
    QStringList keyPoints;
};

// Reads the small JSON object the summary prompt asks for, also inside a Markdown code
// fence or with words around it. std::nullopt when the reply holds no such object; the
// screen then shows the reply as Markdown.
[[nodiscard]] std::optional<PdfSummary> parsePdfSummary(const QString &reply);

// Page numbers an answer cites ("page 4", "pages 2 and 7", "p. 3"), in order of first
// mention, limited to 1..pageCount.
[[nodiscard]] QList<int> citedPages(const QString &answer, int pageCount);

} // namespace zentrik
