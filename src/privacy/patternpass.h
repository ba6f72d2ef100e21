#pragma once

#include "privacy/redactionrules.h"

#include <QString>

#include <unicode/regex.h>

#include <memory>
#include <vector>

namespace zentrik {

// One rule of the redaction table, compiled once, replacing every non-overlapping match,
// left to right, with the rule's text taken literally.
//
// The result is what a scan of the whole text by the regex engine gives, but the engine
// only sees the places where the rule's MatchSite says a match can lie: the first
// character of the address run before each '@', the runs of digits and their separators,
// or the places where a literal starts. Each place is tried once (each run searched once),
// so the work stays linear in the text whatever it holds. The engine works with transparent
// bounds, so word boundaries at the edges still see the characters beyond them.
class PatternPass
{
public:
    explicit PatternPass(const RedactionRule &rule);

    [[nodiscard]] QString apply(const QString &text) const;

    // As apply, writing into `result` (whose storage is reused) and returning true when
    // something was replaced; `result` is left alone otherwise.
    bool applyInto(const QString &text, QString &result) const;

private:
    struct Span
    {
        int32_t start;
        int32_t end;
    };

    [[nodiscard]] std::vector<Span> sitesIn(const char16_t *chars, int32_t length) const;
    [[nodiscard]] std::vector<Span> matchesIn(const QString &text, const std::vector<Span> &sites) const;

    const RedactionRule &m_rule;
    QString m_replacement;
    std::unique_ptr<icu::RegexPattern> m_pattern;
};

} // namespace zentrik
