#include "privacy/casefold.h"

#include <unicode/uniset.h>
#include <unicode/unistr.h>

#include <unordered_map>

namespace zentrik::casefold {

namespace {

[[nodiscard]] bool isAsciiLetter(UChar32 c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

using FoldTable = std::unordered_map<UChar32, std::string>;

// Non-ASCII characters whose folding is made of ASCII letters. Only characters that change
// under case folding can fold onto ASCII, so that property bounds the search.
FoldTable buildFoldTable()
{
    FoldTable table;
    UErrorCode status = U_ZERO_ERROR;
    const icu::UnicodeSet changing(u"[:Changes_When_Casefolded:]", status);
    if (status > U_ZERO_ERROR) {
        return table;
    }
    for (int32_t range = 0; range < changing.getRangeCount(); ++range) {
        for (UChar32 c = changing.getRangeStart(range); c <= changing.getRangeEnd(range); ++c) {
            if (c < 0x80) {
                continue;
            }
            icu::UnicodeString folded(c);
            folded.foldCase();
            std::string ascii;
            for (int32_t i = 0; i < folded.length(); ++i) {
                const char16_t unit = folded.charAt(i);
                if (unit < 'a' || unit > 'z') {
                    ascii.clear();
                    break;
                }
                ascii.push_back(char(unit));
            }
            if (!ascii.empty()) {
                table.emplace(c, std::move(ascii));
            }
        }
    }
    return table;
}

const std::string *nonAsciiFold(UChar32 c)
{
    static const FoldTable table = buildFoldTable();
    const auto it = table.find(c);
    return it == table.end() ? nullptr : &it->second;
}

} // namespace

bool appendAsciiFold(UChar32 c, std::string &out)
{
    if (c < 0x80) {
        if (!isAsciiLetter(c)) {
            return false;
        }
        out.push_back(char(c | 0x20));
        return true;
    }
    const std::string *folded = nonAsciiFold(c);
    if (folded == nullptr) {
        return false;
    }
    out.append(*folded);
    return true;
}

bool appendAsciiFoldReversed(UChar32 c, std::string &out)
{
    if (c < 0x80) {
        if (!isAsciiLetter(c)) {
            return false;
        }
        out.push_back(char(c | 0x20));
        return true;
    }
    const std::string *folded = nonAsciiFold(c);
    if (folded == nullptr) {
        return false;
    }
    out.append(folded->rbegin(), folded->rend());
    return true;
}

bool foldsToAsciiLetters(UChar32 c)
{
    return c < 0x80 ? isAsciiLetter(c) : nonAsciiFold(c) != nullptr;
}

} // namespace zentrik::casefold
