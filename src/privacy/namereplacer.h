#pragma once

#include "privacy/namematch.h"

#include <QString>

namespace zentrik {

// Applies the matches of one name pass, in order, to the text they were found in. Each
// match's range is used exactly as reported, against the text as already changed by the
// replacements before it in the same pass (earlier replacements of a different length
// are not compensated for). A match whose name group took no part, or whose range does not
// lie inside the current text on whole characters, is skipped with one log line.
//
// Works in one left-to-right sweep instead of editing the whole text once per match,
// which would be quadratic on long documents.
[[nodiscard]] QString replaceNameMatches(const QString &text, const NameMatches &matches, const QString &replaceWith);

// Why a match can't be applied to a text of the given length, or nullptr when it can.
// splitsCharacter says whether one of the range's ends falls between the two halves of a
// surrogate pair.
[[nodiscard]] const char *nameMatchProblem(const NameMatch &match, qsizetype textLength, bool splitsCharacter);

void logSkippedNameMatch(const NameMatch &match, const char *problem);

} // namespace zentrik
