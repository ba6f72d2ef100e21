#include "pdf/pageranker.h"

#include <QSet>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace zentrik {

PageRanker::PageRanker(const QStringList &pages)
{
    qint64 totalLength = 0;
    for (const QString &page : pages) {
        QHash<QString, int> counts;
        const QStringList words = tokens(page);
        for (const QString &word : words) {
            ++counts[word];
        }
        for (auto it = counts.cbegin(); it != counts.cend(); ++it) {
            ++m_documentFrequency[it.key()];
        }
        m_termCounts.append(counts);
        m_lengths.append(int(words.size()));
        totalLength += words.size();
    }
    m_averageLength = pages.isEmpty() ? 0 : double(totalLength) / double(pages.size());
}

QStringList PageRanker::tokens(const QString &text)
{
    QStringList words;
    QString current;
    for (const QChar c : text) {
        if (c.isLetterOrNumber()) {
            current.append(c.toCaseFolded());
        } else if (!current.isEmpty()) {
            words.append(current);
            current.clear();
        }
    }
    if (!current.isEmpty()) {
        words.append(current);
    }
    return words;
}

double PageRanker::idf(const QString &term) const
{
    const auto n = double(m_termCounts.size());
    const double df = m_documentFrequency.value(term);
    return std::log((n - df + 0.5) / (df + 0.5) + 1.0);
}

double PageRanker::score(int page, const QString &question) const
{
    if (page < 0 || page >= m_termCounts.size() || m_averageLength <= 0) {
        return 0;
    }
    const QHash<QString, int> &counts = m_termCounts.at(page);
    const double lengthRatio = double(m_lengths.at(page)) / m_averageLength;
    double total = 0;
    const QStringList questionTerms = tokens(question);
    for (const QString &term : QSet<QString>(questionTerms.begin(), questionTerms.end())) {
        const double frequency = counts.value(term);
        if (frequency == 0) {
            continue;
        }
        total += idf(term) * frequency * (k1 + 1) / (frequency + k1 * (1 - b + b * lengthRatio));
    }
    return total;
}

QList<int> PageRanker::rank(const QString &question) const
{
    QList<int> order(m_termCounts.size());
    std::iota(order.begin(), order.end(), 0);
    QList<double> scores;
    scores.reserve(order.size());
    for (int page : order) {
        scores.append(score(page, question));
    }
    std::stable_sort(order.begin(), order.end(), [&scores](int a, int b) { return scores.at(a) > scores.at(b); });
    return order;
}

} // namespace zentrik
