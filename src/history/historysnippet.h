#pragma once

#include <QString>
#include <QStringList>

namespace zentrik {

// The words of a search, taken as the full-text index takes text: runs of letters and
// digits, accents removed, case folded. The last word also matches the start of a longer
// word while it is being typed (it is not followed by a blank).
struct SearchWords
{
    QStringList words;
    bool lastIsPrefix = false;

    [[nodiscard]] bool isEmpty() const { return words.isEmpty(); }
    // The FTS5 query: every word required, each quoted so that nothing of the input is taken
    // as query syntax.
    [[nodiscard]] QString ftsQuery() const;
};

[[nodiscard]] SearchWords searchWords(const QString &text);

// A passage of `text` around the first word that matches, the matching words between
// SearchHit's markers; empty when nothing matches. Linear in the length of the text.
[[nodiscard]] QString markedPassage(const QString &text, const SearchWords &search);

} // namespace zentrik
