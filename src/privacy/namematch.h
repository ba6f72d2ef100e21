#pragma once

#include <QDebug>

#include <cstdint>
#include <vector>

#include <unicode/uversion.h>

U_NAMESPACE_BEGIN
class RegexPattern;
class UnicodeString;
U_NAMESPACE_END

namespace zentrik {

// What one match of a name pattern asks to replace: the UTF-16 range of its third capture
// group as the engine reported it, or -1/-1 when that group took no part in the match.
struct NameMatch
{
    int32_t start = -1;
    int32_t end = -1;

    [[nodiscard]] bool participated() const { return start >= 0; }
    friend bool operator==(const NameMatch &, const NameMatch &) = default;
};

using NameMatches = std::vector<NameMatch>;

// The two passes of name redaction, in the order they run.
enum class NamePass { Greeting, SignOff };

// The capture group whose range replaces a name, in both the greeting and sign-off patterns.
inline constexpr int nameGroup = 3;

// Every match of the pattern over the whole text, collected before anything is replaced.
[[nodiscard]] NameMatches collectNameMatches(const icu::RegexPattern &pattern, const icu::UnicodeString &text);

inline QDebug operator<<(QDebug debug, const NameMatch &match)
{
    QDebugStateSaver saver(debug);
    debug.nospace() << '[' << match.start << ", " << match.end << ')';
    return debug;
}

} // namespace zentrik
