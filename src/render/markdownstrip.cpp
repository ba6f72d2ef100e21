#include "render/markdownstrip.h"

#include "render/stripsteps.h"

#include <QLoggingCategory>

#include <unicode/regex.h>
#include <unicode/unistr.h>

#include <array>
#include <memory>

Q_LOGGING_CATEGORY(lcRender, "zentrik.render")

namespace zentrik {

namespace {

icu::UnicodeString toIcu(const QString &text)
{
    return icu::UnicodeString(reinterpret_cast<const UChar *>(text.utf16()), int32_t(text.size()));
}

// Compiled with no flags: no multi-line mode, so the anchors mean the whole text.
std::unique_ptr<icu::RegexPattern> compile(const char16_t *pattern)
{
    UErrorCode status = U_ZERO_ERROR;
    UParseError parseError {};
    std::unique_ptr<icu::RegexPattern> compiled(
        icu::RegexPattern::compile(icu::UnicodeString(pattern), 0, parseError, status));
    if (U_FAILURE(status)) {
        qCWarning(lcRender) << "Cannot compile pattern" << QString::fromUtf16(pattern) << u_errorName(status);
        return nullptr;
    }
    return compiled;
}

const std::array<std::unique_ptr<icu::RegexPattern>, stripsteps::steps.size()> &compiledSteps()
{
    static const auto compiled = [] {
        std::array<std::unique_ptr<icu::RegexPattern>, stripsteps::steps.size()> patterns;
        for (size_t i = 0; i < stripsteps::steps.size(); ++i) {
            if (i != stripsteps::linkStep) {
                patterns.at(i) = compile(stripsteps::steps.at(i).pattern);
            }
        }
        return patterns;
    }();
    return compiled;
}

// Where the next occurrence of one character lies, for searches whose starting points never
// move backwards: a search that lands before the last answer reuses it, so every character
// is looked at once however many searches there are.
class ForwardSearch
{
public:
    ForwardSearch(const icu::UnicodeString &text, char16_t wanted)
        : m_text(text)
        , m_wanted(wanted)
    { }

    // The first index at or after `from` holding the character, or -1.
    int32_t from(int32_t from)
    {
        if (m_found != unknown && (m_found < 0 || m_found >= from)) {
            return m_found;
        }
        m_found = m_text.indexOf(m_wanted, from);
        return m_found;
    }

private:
    static constexpr int32_t unknown = -2;
    const icu::UnicodeString &m_text;
    char16_t m_wanted;
    int32_t m_found = unknown;
};

// "\[([^\]]+)\]\([^\)]+\)" replaced by its first group, as the engine would do it. A label
// is everything up to the first "]" after the "[" and must not be empty; the "(" has to
// follow that "]" at once; the address runs up to the first ")" after it and must not be
// empty. Nothing else can match, so each "[" is decided by where the next "]" and ")" lie.
// Writes the text with its links replaced into `result`; false (and `result` untouched) when
// there are none.
bool replaceLinks(const icu::UnicodeString &text, icu::UnicodeString &result)
{
    const int32_t length = text.length();
    ForwardSearch closeBracket(text, u']');
    ForwardSearch closeParen(text, u')');
    int32_t copied = 0;
    for (int32_t open = text.indexOf(u'['); open >= 0;) {
        const int32_t labelEnd = closeBracket.from(open + 1);
        if (labelEnd < 0) {
            break; // no later "[" has a "]" after it either
        }
        if (labelEnd == open + 1 || labelEnd + 1 >= length || text.charAt(labelEnd + 1) != u'(') {
            open = text.indexOf(u'[', open + 1);
            continue;
        }
        const int32_t addressEnd = closeParen.from(labelEnd + 2);
        if (addressEnd < 0) {
            break; // every later label ends at or after this one, with no ")" behind it
        }
        if (addressEnd == labelEnd + 2) {
            open = text.indexOf(u'[', open + 1);
            continue;
        }
        result.append(text, copied, open - copied);
        result.append(text, open + 1, labelEnd - open - 1);
        copied = addressEnd + 1;
        open = text.indexOf(u'[', copied);
    }
    if (copied == 0) {
        return false;
    }
    result.append(text, copied, length - copied);
    return true;
}

} // namespace

QString stripMarkdown(const QString &markdown)
{
    // Starts as a read-only view of the reply; each step that changes something makes the
    // next copy, and a step that finds nothing makes none, so a long reply is held only a
    // few times over.
    icu::UnicodeString text(
        static_cast<UBool>(false), reinterpret_cast<const UChar *>(markdown.utf16()), int32_t(markdown.size()));
    const auto &patterns = compiledSteps();
    for (size_t i = 0; i < stripsteps::steps.size(); ++i) {
        if (i == stripsteps::linkStep) {
            icu::UnicodeString replaced;
            if (replaceLinks(text, replaced)) {
                text = std::move(replaced);
            }
            continue;
        }
        if (!patterns.at(i)) {
            continue;
        }
        UErrorCode status = U_ZERO_ERROR;
        icu::UnicodeString replaced;
        bool found = false;
        {
            const std::unique_ptr<icu::RegexMatcher> matcher(patterns.at(i)->matcher(text, status));
            if (U_SUCCESS(status) && matcher->find(status) && U_SUCCESS(status)) {
                found = true;
                matcher->reset();
                replaced = matcher->replaceAll(icu::UnicodeString(stripsteps::steps.at(i).replacement), status);
            }
        }
        if (found && U_SUCCESS(status)) {
            text = std::move(replaced);
        }
    }
    const auto isSpace = [](char16_t c) { return QChar::isSpace(c); };
    int32_t start = 0;
    int32_t end = text.length();
    while (start < end && isSpace(text.charAt(start))) {
        ++start;
    }
    while (end > start && isSpace(text.charAt(end - 1))) {
        --end;
    }
    return QString(reinterpret_cast<const QChar *>(text.getBuffer()) + start, end - start);
}

bool matchesRulePattern(const QString &text)
{
    // The pattern matches when one of its three alternatives does. The first two cost the
    // engine a glance per position; the third, tried at every star of a long run, would walk
    // the rest of the run from each, so it is tried only at the start of the stars that end
    // where "$" may hold: the end of the text or a final line break.
    static const std::unique_ptr<icu::RegexPattern> leading = compile(u"^-{3,}|_{3,}");
    static const std::unique_ptr<icu::RegexPattern> trailing = compile(u"\\*{3,}$");
    if (!leading || !trailing) {
        return false;
    }
    const icu::UnicodeString subject = toIcu(text);
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::RegexMatcher> leadingMatcher(leading->matcher(subject, status));
    if (U_FAILURE(status)) {
        return false;
    }
    if (leadingMatcher->find(status) && U_SUCCESS(status)) {
        return true;
    }
    const std::unique_ptr<icu::RegexMatcher> trailingMatcher(trailing->matcher(subject, status));
    if (U_FAILURE(status)) {
        return false;
    }
    trailingMatcher->useAnchoringBounds(static_cast<UBool>(false));
    const int32_t length = subject.length();
    // "$" holds at the end, and before a final line break of one or two characters.
    for (int32_t end = length; end >= 0 && end >= length - 2; --end) {
        int32_t start = end;
        while (start > 0 && subject.charAt(start - 1) == u'*') {
            --start;
        }
        if (end - start < 3) {
            continue;
        }
        trailingMatcher->region(start, length, status);
        if (U_SUCCESS(status) && trailingMatcher->lookingAt(status) && U_SUCCESS(status)) {
            return true;
        }
    }
    return false;
}

} // namespace zentrik
