// The copy clean-up on arbitrary text: the chain of replacements that strips Markdown, and
// the horizontal-rule test of the message view.

#include "fuzztarget.h"
#include "text.h"

#include "render/markdownstrip.h"

ZENTRIK_FUZZ_TARGET(strip)
{
    const QString text = zentrik::fuzz::textOf(data, size);
    const QString plain = zentrik::stripMarkdown(text);
    FUZZ_CHECK(!text.isEmpty() || plain.isEmpty(), "an empty reply gave a non-empty copy");
    FUZZ_CHECK(zentrik::stripMarkdown(text) == plain, "two clean-ups of one reply differ");
    [[maybe_unused]] const bool rule = zentrik::matchesRulePattern(text);
    return 0;
}
