#include "render/markdownstrip.h"

#include <QLoggingCategory>

#include <unicode/regex.h>
#include <unicode/unistr.h>

#include <array>
#include <memory>

Q_LOGGING_CATEGORY(lcRender, "zentrik.render")

namespace zentrik {

namespace {

struct Replacement {
    const char16_t *pattern;
    const char16_t *replacement;
};

// Applied in this order, each to the result of the one before. Because the asterisks and
// underscores go early, the rule and bullet steps act only in their hyphen forms, and the
// inline-code step eats the innermost back-ticks of a fence before the fence step runs.
constexpr std::array<Replacement, 9> steps = {{
    {u"^#{1,6}\\s", u""},
    {u"[*_]{1,3}", u""},
    {u"\\[([^\\]]+)\\]\\([^\\)]+\\)", u"$1"},
    {u"`([^`]+)`", u"$1"},
    {u"```[\\s\\S]*?```", u""},
    {u"^>\\s", u""},
    {u"^-{3,}|_{3,}|\\*{3,}$", u""},
    {u"^[\\*\\-+]\\s", u""},
    {u"^\\d+\\.\\s", u""},
}};

constexpr const char16_t *rulePattern = u"^-{3,}|_{3,}|\\*{3,}$";

icu::UnicodeString toIcu(const QString &text)
{
    return icu::UnicodeString(reinterpret_cast<const UChar *>(text.utf16()), int32_t(text.size()));
}

QString fromIcu(const icu::UnicodeString &text)
{
    return QString(reinterpret_cast<const QChar *>(text.getBuffer()), text.length());
}

// Compiled with no flags: no multi-line mode, so the anchors mean the whole text.
std::unique_ptr<icu::RegexPattern> compile(const char16_t *pattern)
{
    UErrorCode status = U_ZERO_ERROR;
    UParseError parseError{};
    std::unique_ptr<icu::RegexPattern> compiled(
        icu::RegexPattern::compile(icu::UnicodeString(pattern), 0, parseError, status));
    if (U_FAILURE(status)) {
        qCWarning(lcRender) << "Cannot compile pattern" << QString::fromUtf16(pattern) << u_errorName(status);
        return nullptr;
    }
    return compiled;
}

const std::array<std::unique_ptr<icu::RegexPattern>, steps.size()> &compiledSteps()
{
    static const auto compiled = [] {
        std::array<std::unique_ptr<icu::RegexPattern>, steps.size()> patterns;
        for (size_t i = 0; i < steps.size(); ++i) {
            patterns.at(i) = compile(steps.at(i).pattern);
        }
        return patterns;
    }();
    return compiled;
}

} // namespace

QString stripMarkdown(const QString &markdown)
{
    icu::UnicodeString text = toIcu(markdown);
    const auto &patterns = compiledSteps();
    for (size_t i = 0; i < steps.size(); ++i) {
        if (!patterns.at(i)) {
            continue;
        }
        UErrorCode status = U_ZERO_ERROR;
        icu::UnicodeString replaced;
        {
            const std::unique_ptr<icu::RegexMatcher> matcher(patterns.at(i)->matcher(text, status));
            if (U_SUCCESS(status)) {
                replaced = matcher->replaceAll(icu::UnicodeString(steps.at(i).replacement), status);
            }
        }
        if (U_SUCCESS(status)) {
            text = replaced;
        }
    }
    return fromIcu(text).trimmed();
}

bool matchesRulePattern(const QString &text)
{
    static const std::unique_ptr<icu::RegexPattern> pattern = compile(rulePattern);
    if (!pattern) {
        return false;
    }
    const icu::UnicodeString subject = toIcu(text);
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::RegexMatcher> matcher(pattern->matcher(subject, status));
    return U_SUCCESS(status) && matcher->find(status) && U_SUCCESS(status);
}

} // namespace zentrik
