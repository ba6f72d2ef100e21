#include "reference/referencestrip.h"

#include "render/stripsteps.h"

#include <unicode/regex.h>
#include <unicode/unistr.h>

#include <memory>

namespace zentrik::reference {

namespace {

icu::UnicodeString toIcu(const QString &text)
{
    return { reinterpret_cast<const UChar *>(text.utf16()), int32_t(text.size()) };
}

std::unique_ptr<icu::RegexMatcher> matcher(const char16_t *pattern, const icu::UnicodeString &text)
{
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::RegexMatcher> result(new icu::RegexMatcher(icu::UnicodeString(pattern), text, 0, status));
    return U_SUCCESS(status) ? std::move(result) : nullptr;
}

} // namespace

QString stripMarkdown(const QString &markdown)
{
    icu::UnicodeString text = toIcu(markdown);
    for (const stripsteps::Replacement &step : stripsteps::steps) {
        icu::UnicodeString replaced;
        UErrorCode status = U_ILLEGAL_ARGUMENT_ERROR;
        if (const auto stepMatcher = matcher(step.pattern, text)) {
            status = U_ZERO_ERROR;
            replaced = stepMatcher->replaceAll(icu::UnicodeString(step.replacement), status);
        }
        if (U_SUCCESS(status)) {
            text = replaced;
        }
    }
    return QString(reinterpret_cast<const QChar *>(text.getBuffer()), text.length()).trimmed();
}

bool matchesRulePattern(const QString &text)
{
    const icu::UnicodeString subject = toIcu(text);
    const auto ruleMatcher = matcher(stripsteps::rulePattern, subject);
    UErrorCode status = U_ZERO_ERROR;
    return ruleMatcher && static_cast<bool>(ruleMatcher->find(status)) && static_cast<bool>(U_SUCCESS(status));
}

} // namespace zentrik::reference
