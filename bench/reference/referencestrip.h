#pragma once

#include <QString>

// The copy clean-up done the straightforward way: every step's pattern searched over the
// whole text by the regex engine. It defines what stripMarkdown and matchesRulePattern must
// give; they give the same in time linear in the text, and the tests and the benchmark
// compare the two. Its link step and rule test take time growing with the square of the
// length on some texts. Not for use in the program.
namespace zentrik::reference {

[[nodiscard]] QString stripMarkdown(const QString &markdown);
[[nodiscard]] bool matchesRulePattern(const QString &text);

} // namespace zentrik::reference
