#pragma once

#include <unicode/regex.h>

#include <memory>

namespace zentrik {

// Answers whether the regex engine sees a word boundary (\b) at a position of a text. Asking
// the engine itself keeps its exact rules (which characters are word characters, combining
// marks and format characters being skipped) instead of a copy that could drift from them.
class WordBoundaryProbe
{
public:
    explicit WordBoundaryProbe(const icu::UnicodeString &text);

    [[nodiscard]] bool at(int32_t position);

private:
    std::unique_ptr<icu::RegexMatcher> m_matcher;
    int32_t m_length = 0;
};

} // namespace zentrik
