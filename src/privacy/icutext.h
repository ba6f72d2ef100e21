#pragma once

#include <QString>

#include <unicode/regex.h>
#include <unicode/unistr.h>

#include <memory>
#include <string_view>

// Glue between Qt strings and ICU's regular expressions. Both use UTF-16, so every offset
// ICU reports is an offset into the QString as well.
namespace zentrik::icutext {

// A read-only ICU view of the QString's buffer, without copying. The QString must outlive
// the view and stay unchanged while it is used.
[[nodiscard]] inline icu::UnicodeString view(const QString &text)
{
    return { static_cast<UBool>(false), reinterpret_cast<const char16_t *>(text.utf16()), int32_t(text.size()) };
}

// An ICU string holding its own copy of the text.
[[nodiscard]] inline icu::UnicodeString copy(const QString &text)
{
    return { reinterpret_cast<const char16_t *>(text.utf16()), int32_t(text.size()) };
}

[[nodiscard]] inline icu::UnicodeString copy(std::u16string_view text)
{
    return { text.data(), int32_t(text.size()) };
}

[[nodiscard]] inline QString toQString(const icu::UnicodeString &text)
{
    return QString(reinterpret_cast<const QChar *>(text.getBuffer()), text.length());
}

[[nodiscard]] inline bool failed(UErrorCode status)
{
    return status > U_ZERO_ERROR;
}

// The compiled pattern, or null when it does not compile.
[[nodiscard]] std::unique_ptr<icu::RegexPattern> compile(const icu::UnicodeString &pattern, uint32_t flags);

// A matcher over the text (null on failure) that searches a region as part of the whole
// text: word boundaries and "^" at the region's edges see the characters beyond it.
[[nodiscard]] std::unique_ptr<icu::RegexMatcher> matcher(
    const icu::RegexPattern &pattern, const icu::UnicodeString &text);

// Whether the matcher's pattern matches starting exactly at `start`.
[[nodiscard]] bool matchesAt(icu::RegexMatcher &matcher, int32_t start);

} // namespace zentrik::icutext
