#pragma once

#include <unicode/umachine.h>

#include <string>

namespace zentrik::casefold {

// Appends the full case folding of c (what case-insensitive ICU matching compares) when
// that folding consists of ASCII letters only, and returns false otherwise. Besides A-Z and
// a-z this covers the few characters that fold onto plain letters, such as the Kelvin
// sign, the long s, the sharp s ("ss") and the Latin ligatures ("ffi"). Only those can be
// part of a match of a plain-word name.
bool appendAsciiFold(UChar32 c, std::string &out);

// As appendAsciiFold, but appends the folding back to front, for matching names backwards.
bool appendAsciiFoldReversed(UChar32 c, std::string &out);

[[nodiscard]] bool foldsToAsciiLetters(UChar32 c);

} // namespace zentrik::casefold
