// The privacy guard on arbitrary text: every pass (names after greetings and before
// sign-offs, e-mail addresses, numbers, addresses, credentials) must come back, in bounded
// time, with a text, and a text short enough for the straightforward chain to finish must
// come out exactly as that chain makes it.

#include "fuzztarget.h"
#include "text.h"

#include "privacy/nameredactorpii.h"
#include "privacy/piimanager.h"
#include "reference/referenceredaction.h"

ZENTRIK_FUZZ_TARGET(redact)
{
    const QString text = zentrik::fuzz::textOf(data, size);
    const QString copy = zentrik::PIIManager::redact(text);
    FUZZ_CHECK(!text.isEmpty() || copy.isEmpty(), "an empty text gave a non-empty copy");
    FUZZ_CHECK(zentrik::PIIManager::redact(text) == copy, "two redactions of one text differ");
    // The reference tries the whole name list at every position: a few kilobytes at most.
    if (text.size() <= 4096) {
        const QStringList &names = zentrik::NameRedactorPII::shared().wellKnownNames();
        FUZZ_CHECK(zentrik::reference::redact(text, names) == copy, "the copy differs from the reference chain's");
    }
    return 0;
}
