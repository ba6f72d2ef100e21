#pragma once

#include "privacy/namematch.h"
#include "privacy/namepatterns.h"

#include <unicode/regex.h>

#include <array>
#include <memory>
#include <optional>

namespace zentrik {

class NameLookup;
class WordBoundaryProbe;

// Finds exactly the matches of the greeting pattern (see namepatterns.h) without running the
// name alternation through the regex engine. A greeting can only start at the beginning of
// the text or at a full stop, so only those places are examined; the greeting words are
// matched by the engine, the name after them through the NameLookup.
class GreetingScanner
{
public:
    explicit GreetingScanner(const NameLookup &names);

    [[nodiscard]] bool isValid() const;
    [[nodiscard]] NameMatches find(const icu::UnicodeString &text) const;

private:
    class Scan;

    const NameLookup &m_names;
    // Any greeting word after the start or a full stop: a cheap test before the exact one.
    std::unique_ptr<icu::RegexPattern> m_anyGreeting;
    // One pattern per greeting word, tried in the order of the alternation.
    std::array<std::unique_ptr<icu::RegexPattern>, namepatterns::greetingWords.size()> m_greetings;
};

} // namespace zentrik
