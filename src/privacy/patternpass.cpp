#include "privacy/patternpass.h"

#include "privacy/icutext.h"

#include <unicode/uchar.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <string_view>

namespace zentrik {

namespace {

bool isAsciiAlnum(char16_t c)
{
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9');
}

// [a-zA-Z0-9._%+-], the characters before the '@'.
bool isLocalPartChar(char16_t c)
{
    return isAsciiAlnum(c) || c == u'.' || c == u'_' || c == u'%' || c == u'+' || c == u'-';
}

// [a-zA-Z0-9.-], the characters after it.
bool isDomainChar(char16_t c)
{
    return isAsciiAlnum(c) || c == u'.' || c == u'-';
}

// \d: any decimal digit, whatever the script.
bool isDecimalDigit(UChar32 c)
{
    return c < 0x80 ? (c >= '0' && c <= '9') : bool(u_isdigit(c));
}

// The position of the character of the literal that is least common in running text
// (letters ranked by their frequency in English; anything else counts as rare).
size_t rarestCharacter(std::u16string_view literal)
{
    static constexpr std::u16string_view byFrequency = u"zqxjkvbpygfwmucldrhsnioate ";
    size_t best = 0;
    size_t bestRank = 0;
    for (size_t i = 0; i < literal.size(); ++i) {
        const size_t found = byFrequency.find(literal[i]);
        const size_t rank = found == std::u16string_view::npos ? 0 : found + 1;
        if (i == 0 || rank < bestRank) {
            best = i;
            bestRank = rank;
        }
    }
    return best;
}

} // namespace

PatternPass::PatternPass(const RedactionRule &rule)
    : m_rule(rule)
    , m_replacement(QString::fromUtf16(rule.replacement.data(), qsizetype(rule.replacement.size())))
{
    // A pattern that does not compile leaves its pass without effect.
    m_pattern = icutext::compile(icutext::copy(rule.pattern), 0);
}

QString PatternPass::apply(const QString &text) const
{
    QString result;
    return applyInto(text, result) ? result : text;
}

bool PatternPass::applyInto(const QString &text, QString &result) const
{
    if (!m_pattern || text.isEmpty()) {
        return false;
    }
    const auto *chars = reinterpret_cast<const char16_t *>(text.utf16());
    const std::vector<Span> sites = sitesIn(chars, int32_t(text.size()));
    if (sites.empty()) {
        return false;
    }
    const std::vector<Span> matches = matchesIn(text, sites);
    if (matches.empty()) {
        return false;
    }
    result.resize(0); // keeps the capacity of a buffer used before
    result.reserve(text.size() + qsizetype(matches.size()) * m_replacement.size());
    int32_t copied = 0;
    for (const Span &match : matches) {
        result.append(QStringView(text).mid(copied, match.start - copied));
        result.append(m_replacement);
        copied = match.end;
    }
    result.append(QStringView(text).mid(copied));
    return true;
}

std::vector<PatternPass::Span> PatternPass::sitesIn(const char16_t *chars, int32_t length) const
{
    std::vector<Span> sites;
    // QStringView's single-character search is vectorised; the scans below lean on it.
    const QStringView text(chars, length);
    switch (m_rule.site) {
    case MatchSite::AroundAtSign:
        // One site per '@': the run of local-part characters before it. Every start inside
        // that run reaches the same '@' and the same domain, so the engine needs to try only
        // the run's first character (or the first one after the previous match); letting it
        // search the run would try every start and walk the rest of the run from each.
        for (qsizetype at = text.indexOf(u'@'); at >= 0; at = text.indexOf(u'@', at + 1)) {
            auto start = int32_t(at);
            while (start > 0 && isLocalPartChar(chars[start - 1])) {
                --start;
            }
            if (start < int32_t(at) && at + 1 < length && isDomainChar(chars[at + 1])) {
                sites.push_back({ start, int32_t(at) });
            }
        }
        break;
    case MatchSite::DigitRun: {
        const auto belongs = [this](UChar32 c) {
            return isDecimalDigit(c) || (c < 0x80 && m_rule.extraChars.find(char16_t(c)) != std::u16string_view::npos);
        };
        int32_t position = 0;
        while (position < length) {
            // Most text is ASCII without digits; decide that without decoding anything.
            const char16_t unit = chars[position];
            if (unit < 0x80 && (unit < u'0' || unit > u'9')) {
                ++position;
                continue;
            }
            int32_t next = position;
            UChar32 c = 0;
            U16_NEXT(chars, next, length, c);
            if (!isDecimalDigit(c)) {
                position = next;
                continue;
            }
            int32_t start = position;
            while (start > 0) {
                int32_t previous = start;
                U16_PREV(chars, 0, previous, c);
                if (!belongs(c)) {
                    break;
                }
                start = previous;
            }
            int32_t end = next;
            while (end < length) {
                int32_t after = end;
                U16_NEXT(chars, after, length, c);
                if (!belongs(c)) {
                    break;
                }
                end = after;
            }
            sites.push_back({ start, end });
            position = end;
        }
        break;
    }
    case MatchSite::AtLiteral:
        for (std::u16string_view literal : m_rule.literals) {
            // Look for the literal's least common character, then compare the rest.
            const size_t anchor = rarestCharacter(literal);
            for (qsizetype at = text.indexOf(QChar(literal[anchor]), qsizetype(anchor)); at >= 0;
                 at = text.indexOf(QChar(literal[anchor]), at + 1)) {
                const qsizetype start = at - qsizetype(anchor);
                if (start + qsizetype(literal.size()) <= length
                    && std::u16string_view(chars + start, literal.size()) == literal) {
                    sites.push_back({ int32_t(start), int32_t(start) });
                }
            }
        }
        std::sort(sites.begin(), sites.end(), [](Span a, Span b) { return a.start < b.start; });
        break;
    }
    return sites;
}

std::vector<PatternPass::Span> PatternPass::matchesIn(const QString &text, const std::vector<Span> &sites) const
{
    std::vector<Span> matches;
    const icu::UnicodeString view = icutext::view(text);
    const std::unique_ptr<icu::RegexMatcher> matcher = icutext::matcher(*m_pattern, view);
    if (!matcher) {
        return matches;
    }
    int32_t resumeAt = 0;
    UErrorCode status = U_ZERO_ERROR;
    for (const Span &site : sites) {
        if (m_rule.site == MatchSite::AroundAtSign) {
            // The local part runs from here up to the '@' at site.end.
            const int32_t from = std::max(site.start, resumeAt);
            if (from < site.end && icutext::matchesAt(*matcher, from)) {
                resumeAt = matcher->end(status);
                matches.push_back({ from, resumeAt });
            }
        } else if (m_rule.site == MatchSite::AtLiteral) {
            // A match found here must start here: the engine would have tried this place.
            if (site.start >= resumeAt && icutext::matchesAt(*matcher, site.start)) {
                resumeAt = matcher->end(status);
                matches.push_back({ site.start, resumeAt });
            }
        } else {
            const int32_t from = std::max(site.start, resumeAt);
            if (from >= site.end) {
                continue;
            }
            matcher->region(from, site.end, status);
            while (!icutext::failed(status) && static_cast<bool>(matcher->find(status))) {
                const int32_t start = matcher->start(status);
                resumeAt = matcher->end(status);
                matches.push_back({ start, resumeAt });
            }
        }
        if (icutext::failed(status)) {
            return {};
        }
    }
    return matches;
}

} // namespace zentrik
