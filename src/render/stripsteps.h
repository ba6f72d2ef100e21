#pragma once

#include <array>

namespace zentrik::stripsteps {

struct Replacement
{
    const char16_t *pattern;
    const char16_t *replacement;
};

// Applied in this order, each to the result of the one before. Because the asterisks and
// underscores go early, the rule and bullet steps act only in their hyphen forms, and the
// inline-code step eats the innermost back-ticks of a fence before the fence step runs.
inline constexpr std::array<Replacement, 9> steps = { {
    { u"^#{1,6}\\s", u"" },
    { u"[*_]{1,3}", u"" },
    { u"\\[([^\\]]+)\\]\\([^\\)]+\\)", u"$1" },
    { u"`([^`]+)`", u"$1" },
    { u"```[\\s\\S]*?```", u"" },
    { u"^>\\s", u"" },
    { u"^-{3,}|_{3,}|\\*{3,}$", u"" },
    { u"^[\\*\\-+]\\s", u"" },
    { u"^\\d+\\.\\s", u"" },
} };

// The link step: the engine tries it at every "[" and runs to the end of the text from each
// one that never closes, so it is done by a scanner of its own.
inline constexpr std::size_t linkStep = 2;

inline constexpr const char16_t *rulePattern = u"^-{3,}|_{3,}|\\*{3,}$";

} // namespace zentrik::stripsteps
