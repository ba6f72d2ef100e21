#include "pdf/pdfprompts.h"

#include "pdf/pageranker.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <algorithm>

namespace zentrik {

namespace {

QString pageMarker(int pageNumber)
{
    return QStringLiteral("--- Page %1 ---\n").arg(pageNumber);
}

QString joinPages(const QStringList &pages, const QList<int> &indexes)
{
    QString text;
    for (int index : indexes) {
        if (!text.isEmpty()) {
            text += QStringLiteral("\n\n");
        }
        text += pageMarker(index + 1) + pages.at(index).trimmed();
    }
    return text;
}

} // namespace

DocumentContext buildDocumentContext(const QStringList &pages, const QString &question, qsizetype budget)
{
    DocumentContext context;
    QList<int> all;
    for (int i = 0; i < pages.size(); ++i) {
        all.append(i);
    }
    const QString whole = joinPages(pages, all);
    if (whole.size() <= budget) {
        context.text = whole;
        for (int index : all) {
            context.pageNumbers.append(index + 1);
        }
        return context;
    }

    context.complete = false;
    const QList<int> order = question.trimmed().isEmpty() ? all : PageRanker(pages).rank(question);
    QList<int> chosen;
    qsizetype used = 0;
    for (int index : order) {
        const qsizetype cost = pageMarker(index + 1).size() + pages.at(index).trimmed().size() + 2;
        if (used + cost > budget) {
            continue; // a smaller, lower-ranked page may still fit
        }
        chosen.append(index);
        used += cost;
    }
    if (chosen.isEmpty() && !order.isEmpty()) {
        // Even the best page alone is over the budget: send as much of it as fits.
        const int best = order.first();
        const QString marker = pageMarker(best + 1);
        context.text = marker + pages.at(best).trimmed().left(budget - marker.size());
        context.pageNumbers = { best + 1 };
        return context;
    }
    std::sort(chosen.begin(), chosen.end());
    context.text = joinPages(pages, chosen);
    for (int index : chosen) {
        context.pageNumbers.append(index + 1);
    }
    return context;
}

namespace {

QString describe(const QString &title, int pageCount, const DocumentContext &context)
{
    QString header = QStringLiteral("Document: \"%1\" (%2 pages)").arg(title).arg(pageCount);
    if (!context.complete) {
        QStringList numbers;
        for (int page : context.pageNumbers) {
            numbers.append(QString::number(page));
        }
        header += QStringLiteral("; only pages %1 are included below").arg(numbers.join(QStringLiteral(", ")));
    }
    return header;
}

} // namespace

QString pdfSummaryPrompt(const QString &title, int pageCount, const DocumentContext &context)
{
    return QStringLiteral("Summarize the document below. Reply with only a JSON object, no other text, in this form:\n"
                          "{\"title\": \"a short title\", \"summary\": \"a brief summary in two to four sentences\", "
                          "\"keyPoints\": [\"three to five key points\"]}\n\n%1\n\n%2")
        .arg(describe(title, pageCount, context), context.text);
}

QString pdfQuestionPrompt(const QString &title, int pageCount, const DocumentContext &context, const QString &question)
{
    return QStringLiteral("Answer the question using only the document text below. Each page starts with a line "
                          "\"--- Page N ---\". Cite the pages your answer relies on as (page N). If the text does not "
                          "hold the answer, say so.\n\n%1\n\n%2\n\nQuestion: %3")
        .arg(describe(title, pageCount, context), context.text, question);
}

std::optional<PdfSummary> parsePdfSummary(const QString &reply)
{
    const qsizetype open = reply.indexOf(QLatin1Char('{'));
    const qsizetype close = reply.lastIndexOf(QLatin1Char('}'));
    if (open < 0 || close <= open) {
        return std::nullopt;
    }
    QJsonParseError error {};
    const QJsonDocument document = QJsonDocument::fromJson(reply.mid(open, close - open + 1).toUtf8(), &error);
    if (error.error != QJsonParseError::NoError || !document.isObject()) {
        return std::nullopt;
    }
    const QJsonObject object = document.object();
    PdfSummary summary;
    summary.title = object.value(QStringLiteral("title")).toString().trimmed();
    summary.summary = object.value(QStringLiteral("summary")).toString().trimmed();
    const QJsonValue points = object.contains(QStringLiteral("keyPoints")) ? object.value(QStringLiteral("keyPoints"))
                                                                           : object.value(QStringLiteral("key_points"));
    for (const QJsonValue point : points.toArray()) {
        if (point.isString() && !point.toString().trimmed().isEmpty()) {
            summary.keyPoints.append(point.toString().trimmed());
        }
    }
    constexpr qsizetype mostPoints = 5;
    if (summary.keyPoints.size() > mostPoints) {
        summary.keyPoints.resize(mostPoints);
    }
    if (summary.summary.isEmpty() || summary.keyPoints.isEmpty()) {
        return std::nullopt;
    }
    return summary;
}

QList<int> citedPages(const QString &answer, int pageCount)
{
    static const QRegularExpression citation(
        QStringLiteral("\\b(?:pages?|pp?\\.)\\s*(\\d+(?:\\s*(?:,|and|&|-|–|to)\\s*\\d+)*)"),
        QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression number(QStringLiteral("\\d+"));
    QList<int> pages;
    for (auto match = citation.globalMatch(answer); match.hasNext();) {
        const QString numbers = match.next().captured(1);
        for (auto n = number.globalMatch(numbers); n.hasNext();) {
            bool ok = false;
            const int page = n.next().captured().toInt(&ok);
            if (ok && page >= 1 && page <= pageCount && !pages.contains(page)) {
                pages.append(page);
            }
        }
    }
    return pages;
}

} // namespace zentrik
