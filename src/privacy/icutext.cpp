#include "privacy/icutext.h"

namespace zentrik::icutext {

std::unique_ptr<icu::RegexPattern> compile(const icu::UnicodeString &pattern, uint32_t flags)
{
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::RegexPattern> compiled(icu::RegexPattern::compile(pattern, flags, status));
    return failed(status) ? nullptr : std::move(compiled);
}

std::unique_ptr<icu::RegexMatcher> matcher(const icu::RegexPattern &pattern, const icu::UnicodeString &text)
{
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::RegexMatcher> result(pattern.matcher(text, status));
    if (failed(status) || !result) {
        return nullptr;
    }
    result->useTransparentBounds(static_cast<UBool>(true));
    result->useAnchoringBounds(static_cast<UBool>(false));
    return result;
}

bool matchesAt(icu::RegexMatcher &matcher, int32_t start)
{
    UErrorCode status = U_ZERO_ERROR;
    matcher.region(start, matcher.input().length(), status);
    if (failed(status)) {
        return false;
    }
    const bool matched = static_cast<bool>(matcher.lookingAt(status));
    return matched && !failed(status);
}

} // namespace zentrik::icutext
