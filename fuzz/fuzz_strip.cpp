// The copy clean-up on arbitrary text: the chain of replacements that strips Markdown, and
// the horizontal-rule test of the message view, each against the regex engine running the
// same patterns over the whole text (on texts short enough for its slow cases).

#include "fuzztarget.h"
#include "text.h"

#include "reference/referencestrip.h"
#include "render/markdownstrip.h"

ZENTRIK_FUZZ_TARGET(strip)
{
    const QString text = zentrik::fuzz::textOf(data, size);
    const QString plain = zentrik::stripMarkdown(text);
    FUZZ_CHECK(!text.isEmpty() || plain.isEmpty(), "an empty reply gave a non-empty copy");
    FUZZ_CHECK(zentrik::stripMarkdown(text) == plain, "two clean-ups of one reply differ");
    const bool rule = zentrik::matchesRulePattern(text);
    if (text.size() <= 16384) {
        FUZZ_CHECK(zentrik::reference::stripMarkdown(text) == plain, "the copy differs from the reference chain's");
        FUZZ_CHECK(zentrik::reference::matchesRulePattern(text) == rule, "the rule test differs from the engine's");
    }
    return 0;
}
