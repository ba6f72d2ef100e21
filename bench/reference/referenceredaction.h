#pragma once

#include "privacy/namematch.h"

#include <QString>
#include <QStringList>

// The straightforward redaction chain: every pattern compiled on every call, the name
// patterns run over the whole text with the full name alternation, each replacement
// applied to the text one by one. It defines what redaction must produce; the library's
// own classes produce the same much faster, and the tests and the benchmark compare the
// two. Not for use in the program.
namespace zentrik::reference {

[[nodiscard]] NameMatches nameMatches(NamePass pass, const QString &text, const QStringList &names);

// Applies one pass's matches one after the other, each with QString::replace on the text
// as changed so far.
[[nodiscard]] QString applyNameMatches(const QString &text, const NameMatches &matches, const QString &replaceWith);

[[nodiscard]] QString redactNames(const QString &text, const QStringList &names, const QString &replaceWith);

// The nine rules of the redaction table, in order.
[[nodiscard]] QString redactPatterns(const QString &text);

// The whole redaction: names (replaced by "[NAME]"), then the nine rules.
[[nodiscard]] QString redact(const QString &text, const QStringList &names);

} // namespace zentrik::reference
