// The privacy guard on arbitrary text: every pass (names after greetings and before
// sign-offs, e-mail addresses, numbers, addresses, credentials) must come back, in bounded
// time, with a text.

#include "fuzztarget.h"
#include "text.h"

#include "privacy/piimanager.h"

ZENTRIK_FUZZ_TARGET(redact)
{
    const QString text = zentrik::fuzz::textOf(data, size);
    const QString copy = zentrik::PIIManager::redact(text);
    FUZZ_CHECK(!text.isEmpty() || copy.isEmpty(), "an empty text gave a non-empty copy");
    FUZZ_CHECK(zentrik::PIIManager::redact(text) == copy, "two redactions of one text differ");
    return 0;
}
