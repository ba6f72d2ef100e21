#pragma once

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

namespace zentrik {

// Ranks the pages of a document against a question with Okapi BM25, so that a long
// document sends the model the pages most likely to hold the answer.
class PageRanker
{
public:
    explicit PageRanker(const QStringList &pages);

    // Page indexes (0-based), best first; pages scoring alike keep document order.
    [[nodiscard]] QList<int> rank(const QString &question) const;
    [[nodiscard]] double score(int page, const QString &question) const;

    // Lower-case words of letters and digits.
    [[nodiscard]] static QStringList tokens(const QString &text);

    static constexpr double k1 = 1.2;
    static constexpr double b = 0.75;

private:
    [[nodiscard]] double idf(const QString &term) const;

    QList<QHash<QString, int>> m_termCounts;
    QList<int> m_lengths;
    QHash<QString, int> m_documentFrequency;
    double m_averageLength = 0;
};

} // namespace zentrik
