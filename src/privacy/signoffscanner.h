#pragma once

#include "privacy/namematch.h"

#include <unicode/regex.h>

#include <memory>

namespace zentrik {

class NameLookup;

// Finds exactly the matches of the sign-off pattern (see namepatterns.h) without trying the
// several-thousand-way name alternation at every position of the text. Every match is a
// name directly followed by ", " or " " and a sign-off phrase, so the scan looks for the
// phrases first (a few character tests rule out almost every blank), then for a name
// ending right before one, walking backwards through the NameLookup, and lets the regex
// engine confirm the phrase.
class SignOffScanner
{
public:
    explicit SignOffScanner(const NameLookup &names);

    [[nodiscard]] bool isValid() const;
    [[nodiscard]] NameMatches find(const icu::UnicodeString &text) const;

private:
    class Scan;

    const NameLookup &m_names;
    // ",? " and the sign-off phrases; its group 2 is the sign-off pattern's group 3.
    std::unique_ptr<icu::RegexPattern> m_phrase;
};

} // namespace zentrik
