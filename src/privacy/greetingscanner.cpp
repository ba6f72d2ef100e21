#include "privacy/greetingscanner.h"

#include "privacy/casefold.h"
#include "privacy/icutext.h"
#include "privacy/namelookup.h"
#include "privacy/wordboundaryprobe.h"

#include <QStringView>

#include <unicode/utf16.h>

#include <algorithm>
#include <climits>
#include <string>

namespace zentrik {

namespace {

// The greeting's lead-in: the start of the text or a full stop and white space.
constexpr std::u16string_view leadIn = u"(?:^|\\.\\s+)(?:";

// ASCII characters that might count as white space. A superset of the engine's \s on ASCII,
// so that ruling a place out never depends on the engine's exact set.
bool mayBeSpace(char16_t c)
{
    return (c >= 0x09 && c <= 0x0d) || (c >= 0x1c && c <= 0x20);
}

bool mayStartGreetingWord(char16_t c)
{
    if (c >= 0x80) {
        return true; // could fold onto a letter; leave it to the engine
    }
    const char16_t lower = (c >= u'A' && c <= u'Z') ? char16_t(c + 0x20) : c;
    return std::ranges::any_of(
        namepatterns::greetingWords, [lower](std::u16string_view word) { return word.front() == lower; });
}

} // namespace

// The state of one search: the text and the matchers bound to it, made when first needed.
class GreetingScanner::Scan
{
public:
    Scan(const GreetingScanner &scanner, const icu::UnicodeString &text)
        : m_scanner(scanner)
        , m_text(text)
        , m_chars(text.getBuffer())
        , m_length(text.length())
    { }

    NameMatches run()
    {
        NameMatches matches;
        if (m_length == 0) {
            return matches;
        }
        int32_t resumeAt = 0;
        const auto examine = [&](int32_t start) {
            if (!mayStartAt(start)) {
                return;
            }
            if (const std::optional<NameMatch> match = matchAt(start)) {
                matches.push_back(*match);
                resumeAt = match->end;
            }
        };
        examine(0);
        // QStringView's single-character search is vectorised.
        const QStringView chars(m_chars, m_length);
        for (qsizetype dot = chars.indexOf(u'.', std::max(1, resumeAt)); dot >= 0;
             dot = chars.indexOf(u'.', std::max(dot + 1, qsizetype(resumeAt)))) {
            examine(int32_t(dot));
        }
        return matches;
    }

private:
    // Rules out, on the characters alone, places where no greeting can start.
    [[nodiscard]] bool mayStartAt(int32_t start) const
    {
        if (m_chars[start] != u'.') {
            return start == 0 && mayStartGreetingWord(m_chars[0]);
        }
        int32_t next = start + 1;
        while (next < m_length && mayBeSpace(m_chars[next])) {
            ++next;
        }
        if (next == m_length) {
            return false;
        }
        if (next == start + 1) {
            return m_chars[next] >= 0x80; // white space beyond ASCII, perhaps
        }
        return mayStartGreetingWord(m_chars[next]);
    }

    [[nodiscard]] std::optional<NameMatch> matchAt(int32_t start)
    {
        if (!lookingAt(m_anyGreeting, *m_scanner.m_anyGreeting, start)) {
            return std::nullopt;
        }
        for (size_t word = 0; word < m_greetings.size(); ++word) {
            if (!lookingAt(m_greetings[word], *m_scanner.m_greetings[word], start)) {
                continue;
            }
            UErrorCode status = U_ZERO_ERROR;
            const int32_t nameStart = m_greetings[word]->end(status);
            if (icutext::failed(status)) {
                continue;
            }
            if (const int32_t nameEnd = nameEndAt(nameStart); nameEnd >= 0) {
                return NameMatch { nameStart, nameEnd };
            }
        }
        return std::nullopt;
    }

    // The end of the name the engine would take at this place, or -1. Several names can fit
    // (prefixes of each other, since the inner names need no word boundary); the engine
    // takes the first in list order.
    [[nodiscard]] int32_t nameEndAt(int32_t start)
    {
        const NameLookup &names = m_scanner.m_names;
        std::string folded;
        int bestIndex = INT_MAX;
        int32_t bestEnd = -1;
        int32_t position = start;
        while (position < m_length) {
            int32_t next = position;
            UChar32 c = 0;
            U16_NEXT(m_chars, next, m_length, c);
            if (!casefold::appendAsciiFold(c, folded) || folded.size() > names.longestName()) {
                break;
            }
            position = next;
            if (const NameLookup::Entry *entry = names.find(folded)) {
                const int index = names.matchingIndex(*entry, boundary(), start, position);
                if (index < bestIndex) {
                    bestIndex = index;
                    bestEnd = position;
                }
            }
        }
        return bestEnd;
    }

    bool lookingAt(std::unique_ptr<icu::RegexMatcher> &matcher, const icu::RegexPattern &pattern, int32_t start)
    {
        if (!matcher) {
            matcher = icutext::matcher(pattern, m_text);
        }
        return matcher && icutext::matchesAt(*matcher, start);
    }

    WordBoundaryProbe &boundary()
    {
        if (!m_boundary) {
            m_boundary = std::make_unique<WordBoundaryProbe>(m_text);
        }
        return *m_boundary;
    }

    const GreetingScanner &m_scanner;
    const icu::UnicodeString &m_text;
    const char16_t *m_chars;
    int32_t m_length;
    std::unique_ptr<icu::RegexMatcher> m_anyGreeting;
    std::array<std::unique_ptr<icu::RegexMatcher>, namepatterns::greetingWords.size()> m_greetings;
    std::unique_ptr<WordBoundaryProbe> m_boundary;
};

GreetingScanner::GreetingScanner(const NameLookup &names)
    : m_names(names)
{
    icu::UnicodeString anyWord;
    for (size_t word = 0; word < namepatterns::greetingWords.size(); ++word) {
        const icu::UnicodeString wordText = icutext::copy(namepatterns::greetingWords[word]);
        m_greetings[word] = icutext::compile(icutext::copy(leadIn) + wordText + u") ", UREGEX_CASE_INSENSITIVE);
        if (word > 0) {
            anyWord += u'|';
        }
        anyWord += wordText;
    }
    m_anyGreeting = icutext::compile(icutext::copy(leadIn) + anyWord + u") ", UREGEX_CASE_INSENSITIVE);
}

bool GreetingScanner::isValid() const
{
    return m_anyGreeting && std::ranges::all_of(m_greetings, [](const auto &pattern) { return pattern != nullptr; });
}

NameMatches GreetingScanner::find(const icu::UnicodeString &text) const
{
    Scan scan(*this, text);
    return scan.run();
}

} // namespace zentrik
