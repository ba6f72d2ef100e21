#include "privacy/namematch.h"

#include "privacy/icutext.h"

#include <memory>

namespace zentrik {

NameMatches collectNameMatches(const icu::RegexPattern &pattern, const icu::UnicodeString &text)
{
    NameMatches matches;
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::RegexMatcher> matcher(pattern.matcher(text, status));
    if (icutext::failed(status) || !matcher) {
        return matches;
    }
    while (static_cast<bool>(matcher->find(status)) && !icutext::failed(status)) {
        const int32_t start = matcher->start(nameGroup, status);
        const int32_t end = matcher->end(nameGroup, status);
        if (icutext::failed(status)) {
            break;
        }
        matches.push_back({ start, end });
    }
    return matches;
}

} // namespace zentrik
