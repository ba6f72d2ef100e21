#pragma once

#include <QString>

namespace zentrik {

// The plain-text copy of a reply: a fixed chain of replacements that removes Markdown
// markup. Every pattern applies to the whole text at once, so "^" and "$" anchor at the
// start and the end of the reply, not of each line; markers further down stay.
[[nodiscard]] QString stripMarkdown(const QString &markdown);

// True when the reply matches the horizontal-rule pattern "^-{3,}|_{3,}|\*{3,}$" anywhere
// (hyphens at the very start, underscores anywhere, asterisks at the very end); the
// assistant message view draws a divider for such a reply.
[[nodiscard]] bool matchesRulePattern(const QString &text);

} // namespace zentrik
