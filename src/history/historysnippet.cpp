#include "history/historysnippet.h"

#include "history/historytypes.h"

#include <QList>

#include <algorithm>

namespace zentrik {

namespace {

constexpr int mostWords = 16;
constexpr qsizetype longestWord = 100;
constexpr int wordsBefore = 6;
constexpr int wordsAfter = 10;

struct Token
{
    qsizetype start = 0;
    qsizetype end = 0;
};

QList<Token> tokens(const QString &text)
{
    QList<Token> found;
    qsizetype start = -1;
    for (qsizetype i = 0; i <= text.size(); ++i) {
        const bool inWord = i < text.size() && (text.at(i).isLetterOrNumber() || text.at(i).isMark());
        if (inWord && start < 0) {
            start = i;
        } else if (!inWord && start >= 0) {
            found.append({ start, i });
            start = -1;
        }
    }
    return found;
}

QString fold(QStringView word)
{
    QString folded;
    for (const QChar c : word.toString().normalized(QString::NormalizationForm_D)) {
        if (!c.isMark()) {
            folded.append(c);
        }
    }
    return folded.toCaseFolded();
}

bool matches(const QString &token, const SearchWords &search)
{
    for (qsizetype i = 0; i < search.words.size(); ++i) {
        const QString &word = search.words.at(i);
        if (token == word || (search.lastIsPrefix && i == search.words.size() - 1 && token.startsWith(word))) {
            return true;
        }
    }
    return false;
}

} // namespace

SearchWords searchWords(const QString &text)
{
    SearchWords search;
    for (const Token &token : tokens(text)) {
        if (search.words.size() == mostWords) {
            break;
        }
        const QString word = fold(QStringView(text).mid(token.start, std::min(token.end - token.start, longestWord)));
        if (!word.isEmpty()) {
            search.words.append(word);
        }
    }
    search.lastIsPrefix = !search.words.isEmpty() && text.back().isLetterOrNumber() && search.words.last().size() >= 2;
    return search;
}

QString SearchWords::ftsQuery() const
{
    QStringList phrases;
    for (const QString &word : words) {
        phrases.append(
            QLatin1Char('"') + QString(word).replace(QLatin1Char('"'), QStringLiteral("\"\"")) + QLatin1Char('"'));
    }
    if (lastIsPrefix) {
        phrases.last() += QLatin1Char('*');
    }
    return phrases.join(QLatin1Char(' '));
}

QString markedPassage(const QString &text, const SearchWords &search)
{
    const QList<Token> all = tokens(text);
    qsizetype first = -1;
    QList<bool> matched(all.size(), false);
    for (qsizetype i = 0; i < all.size(); ++i) {
        matched[i] = matches(fold(QStringView(text).mid(all[i].start, all[i].end - all[i].start)), search);
        if (matched[i] && first < 0) {
            first = i;
        }
        if (first >= 0 && i >= first + wordsAfter) {
            break; // the passage ends here; the rest of the text is not looked at
        }
    }
    if (first < 0) {
        return {};
    }
    const qsizetype from = std::max<qsizetype>(0, first - wordsBefore);
    const qsizetype to = std::min<qsizetype>(all.size() - 1, first + wordsAfter);
    QString passage = from > 0 ? QString(QChar(0x2026)) : QString();
    qsizetype copied = all[from].start;
    for (qsizetype i = from; i <= to; ++i) {
        passage += text.mid(copied, all[i].start - copied);
        const QString word = text.mid(all[i].start, all[i].end - all[i].start);
        passage += matched[i] ? SearchHit::matchStart + word + SearchHit::matchEnd : word;
        copied = all[i].end;
    }
    // The end of the text (its closing punctuation) when the passage reaches it.
    passage += to < all.size() - 1 ? QString(QChar(0x2026)) : text.mid(copied);
    return passage.simplified();
}

} // namespace zentrik
