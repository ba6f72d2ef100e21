#include "privacy/signoffscanner.h"

#include "privacy/casefold.h"
#include "privacy/icutext.h"
#include "privacy/namelookup.h"
#include "privacy/namepatterns.h"
#include "privacy/wordboundaryprobe.h"

#include <unicode/utf16.h>

#include <array>
#include <climits>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>

namespace zentrik {

namespace {

// The phrase pattern's group that corresponds to the sign-off pattern's name group.
constexpr int phraseNameGroup = nameGroup - 1;

bool isAsciiLetter(char16_t c)
{
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z');
}

char16_t asciiLower(char16_t c)
{
    return (c >= u'A' && c <= u'Z') ? char16_t(c + 0x20) : c;
}

// Whether the literal may match case-insensitively at the position. Only ASCII is decided
// here; anything beyond it might fold onto a letter and is left to the engine.
bool mayMatchLiteral(const char16_t *chars, int32_t length, int32_t at, std::u16string_view literal)
{
    for (size_t i = 0; i < literal.size(); ++i) {
        const int32_t position = at + int32_t(i);
        if (position >= length) {
            return false;
        }
        if (chars[position] >= 0x80) {
            return true;
        }
        if (asciiLower(chars[position]) != literal[i]) {
            return false;
        }
    }
    return true;
}

// The sign-off phrases of namepatterns::signOffPhrases that start with fixed text, by
// their first letter.
std::span<const std::u16string_view> phraseOpenings(char16_t first)
{
    static constexpr std::array<std::u16string_view, 3> t = { u"thx", u"thank", u"take care" };
    static constexpr std::array<std::u16string_view, 1> r = { u"regards" };
    static constexpr std::array<std::u16string_view, 1> b = { u"best" };
    static constexpr std::array<std::u16string_view, 1> a = { u"all the best" };
    static constexpr std::array<std::u16string_view, 2> h = { u"happy ", u"have a " };
    switch (first) {
    case u't':
        return t;
    case u'r':
        return r;
    case u'b':
        return b;
    case u'a':
        return a;
    case u'h':
        return h;
    default:
        return {};
    }
}

// A necessary condition for a sign-off phrase at the position, decided on ASCII alone.
bool mayStartPhrase(const char16_t *chars, int32_t length, int32_t at)
{
    if (at >= length) {
        return false;
    }
    if (chars[at] >= 0x80) {
        return true;
    }
    if (!isAsciiLetter(chars[at])) {
        return false;
    }
    for (std::u16string_view opening : phraseOpenings(asciiLower(chars[at]))) {
        if (mayMatchLiteral(chars, length, at, opening)) {
            return true;
        }
    }
    // "[a-z]+ly" and "[a-z]+ regards" depend on the run of letters starting here.
    int32_t runEnd = at;
    while (runEnd < length && isAsciiLetter(chars[runEnd])) {
        ++runEnd;
    }
    if (runEnd < length && chars[runEnd] >= 0x80) {
        return true;
    }
    for (int32_t i = at + 1; i + 1 < runEnd; ++i) {
        if (asciiLower(chars[i]) == u'l' && asciiLower(chars[i + 1]) == u'y') {
            return true;
        }
    }
    return runEnd + 1 < length && chars[runEnd] == u' '
        && (asciiLower(chars[runEnd + 1]) == u'r' || chars[runEnd + 1] >= 0x80);
}

} // namespace

class SignOffScanner::Scan
{
public:
    Scan(const SignOffScanner &scanner, const icu::UnicodeString &text)
        : m_scanner(scanner)
        , m_text(text)
        , m_chars(text.getBuffer())
        , m_length(text.length())
    { }

    NameMatches run()
    {
        NameMatches matches;
        int32_t resumeAt = 0;
        for (int32_t blank = 1; blank < m_length; ++blank) {
            const char16_t c = m_chars[blank];
            if (c != u' ' && c != u',') {
                continue;
            }
            // A match starts at resumeAt or later and its name is not empty.
            if (blank <= resumeAt || !endsWithNameLetter(blank)) {
                continue;
            }
            int32_t phrase = blank + 1;
            if (c == u',') {
                if (phrase >= m_length || m_chars[phrase] != u' ') {
                    continue;
                }
                ++phrase;
            }
            if (!mayStartPhrase(m_chars, m_length, phrase) || !hasNameEndingAt(blank, resumeAt)) {
                continue;
            }
            if (const std::optional<std::pair<NameMatch, int32_t>> found = phraseAt(blank)) {
                matches.push_back(found->first);
                resumeAt = found->second;
            }
        }
        return matches;
    }

private:
    [[nodiscard]] bool endsWithNameLetter(int32_t end) const
    {
        if (m_chars[end - 1] < 0x80) {
            return isAsciiLetter(m_chars[end - 1]);
        }
        int32_t position = end;
        UChar32 c = 0;
        U16_PREV(m_chars, 0, position, c);
        return casefold::foldsToAsciiLetters(c);
    }

    // Whether a name of the list, as the alternation matches it, ends at `end` and starts
    // no earlier than `notBefore`. Names are compared by their folding, character by
    // character backwards, so a sharp s or a ligature counts for the letters it folds to.
    [[nodiscard]] bool hasNameEndingAt(int32_t end, int32_t notBefore)
    {
        const NameLookup &names = m_scanner.m_names;
        std::string reversed;
        size_t checkedLetters = 0;
        int32_t position = end;
        while (position > notBefore) {
            int32_t previous = position;
            UChar32 c = 0;
            U16_PREV(m_chars, 0, previous, c);
            if (previous < notBefore || !casefold::appendAsciiFoldReversed(c, reversed)
                || reversed.size() > names.longestName()) {
                return false;
            }
            // Every longer candidate ends in the same letters, so one failed test ends the walk.
            if (checkedLetters < 2 && reversed.size() >= 2) {
                if (!names.someNameEndsWith(reversed[0], reversed[1])) {
                    return false;
                }
                checkedLetters = 2;
            }
            if (checkedLetters < 3 && reversed.size() >= 3) {
                if (!names.someNameEndsWith(reversed[0], reversed[1], reversed[2])) {
                    return false;
                }
                checkedLetters = 3;
            }
            position = previous;
            if (const NameLookup::Entry *entry = names.findReversed(reversed)) {
                if (names.matchingIndex(*entry, boundary(), position, end) != INT_MAX) {
                    return true;
                }
            }
        }
        return false;
    }

    // The phrase at `at` as the engine matches it: the name group's range and the match end.
    [[nodiscard]] std::optional<std::pair<NameMatch, int32_t>> phraseAt(int32_t at)
    {
        if (!m_phrase) {
            m_phrase = icutext::matcher(*m_scanner.m_phrase, m_text);
        }
        if (!m_phrase || !icutext::matchesAt(*m_phrase, at)) {
            return std::nullopt;
        }
        UErrorCode status = U_ZERO_ERROR;
        const NameMatch match { m_phrase->start(phraseNameGroup, status), m_phrase->end(phraseNameGroup, status) };
        const int32_t end = m_phrase->end(status);
        if (icutext::failed(status)) {
            return std::nullopt;
        }
        return std::make_pair(match, end);
    }

    WordBoundaryProbe &boundary()
    {
        if (!m_boundary) {
            m_boundary = std::make_unique<WordBoundaryProbe>(m_text);
        }
        return *m_boundary;
    }

    const SignOffScanner &m_scanner;
    const icu::UnicodeString &m_text;
    const char16_t *m_chars;
    int32_t m_length;
    std::unique_ptr<icu::RegexMatcher> m_phrase;
    std::unique_ptr<WordBoundaryProbe> m_boundary;
};

SignOffScanner::SignOffScanner(const NameLookup &names)
    : m_names(names)
{
    m_phrase = icutext::compile(
        icu::UnicodeString(u",? ") + icutext::copy(namepatterns::signOffPhrases), UREGEX_CASE_INSENSITIVE);
}

bool SignOffScanner::isValid() const
{
    return m_phrase != nullptr;
}

NameMatches SignOffScanner::find(const icu::UnicodeString &text) const
{
    Scan scan(*this, text);
    return scan.run();
}

} // namespace zentrik
