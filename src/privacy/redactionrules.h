#pragma once

#include <array>
#include <string_view>

namespace zentrik {

// Where the matches of a rule can lie, so that the fast path can hand the regex engine only
// the parts of a long text that a match could touch.
enum class MatchSite {
    AroundAtSign, // starts in the run of local-part characters right before an '@'
    DigitRun, // made only of decimal digits (any script) and the rule's extraChars
    AtLiteral, // starts with one of the rule's literals
};

struct RedactionRule
{
    std::u16string_view pattern;
    std::u16string_view replacement;
    MatchSite site;
    std::u16string_view extraChars; // DigitRun
    std::array<std::u16string_view, 2> literals; // AtLiteral
};

// Applied in this order, case-sensitively, each to the output of the one before. The
// patterns are kept exactly as they are, operator precedence included: in the last three
// the alternation binds loosest, so the bare words "user", "pass" and "login" are replaced
// on their own, also inside longer words.
inline constexpr std::array<RedactionRule, 9> redactionRules = { {
    { u"[a-zA-Z0-9._%+-]+@[a-zA-Z0-9.-]+\\.[a-zA-Z]{2,}", u"[EMAIL_ADDRESS]", MatchSite::AroundAtSign, {}, {} },
    { u"\\(\\d{3}\\) \\d{3}-\\d{4}|\\d{10}", u"[PHONE_NUMBER]", MatchSite::DigitRun, u"() -", {} },
    { u"\\b\\d{3}-\\d{2}-\\d{4}\\b", u"[SSN]", MatchSite::DigitRun, u"-", {} },
    { u"\\b(?:\\d{4}[ -]?){3}\\d{4}\\b", u"[CREDIT_CARD]", MatchSite::DigitRun, u" -", {} },
    { u"\\b\\d{5}(?:-\\d{4})?\\b", u"[ZIP_CODE]", MatchSite::DigitRun, u"-", {} },
    { u"\\b(?:\\d{1,3}\\.){3}\\d{1,3}\\b", u"[IP_ADDRESS]", MatchSite::DigitRun, u".", {} },
    { u"user( ?name)?|login: \\S+", u"[USERNAME]", MatchSite::AtLiteral, {}, { u"user", u"login: " } },
    { u"pass(word|phrase)?|secret: \\S+", u"[PASSWORD]", MatchSite::AtLiteral, {}, { u"pass", u"secret: " } },
    { u"login( cred(ential)?s| info(rmation)?)?|cred(ential)?s: \\S+ /? \\S+", u"[CREDENTIALS]", MatchSite::AtLiteral,
        {}, { u"login", u"cred" } },
} };

} // namespace zentrik
