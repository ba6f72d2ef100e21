#pragma once

#include "support/hostiletext.h"

namespace zentrik::test {

// For every rule and both name passes, the shape that would make it slow if the engine
// were let loose on a long run: address characters that never complete an address, digit
// runs with every separator, values after a keyword that never end, packed greetings and
// sign-offs, marks and spaces a word boundary or a greeting has to look past.
inline void addHostileRedactionRows()
{
    addHostileColumns();
    addHostileRow("letters before an unfinished address", "", "a", "@b.c");
    addHostileRow("dotted run before an unfinished address", "", "a.", "@b.c");
    addHostileRow("signs in the local part", "", "%+-_", "@b.c");
    addHostileRow("long dotted domain without a top level", "a@", "b.", "c");
    addHostileRow("long hyphenated domain", "a@", "b-", "");
    addHostileRow("long local part and domain", "", "a", "@b.b.b.b.b.b.b.b.b.b.b.b.b.b.b.b.b.b.b.b.b.b.b.b.b.b.c");
    addHostileRow("at signs", "", "x@", "");
    addHostileRow("addresses back to back", "", "a@b.cd@", "");
    addHostileRow("digits", "", "1", "");
    addHostileRow("digits and blanks", "", "1 ", "");
    addHostileRow("digits and hyphens", "", "1-", "");
    addHostileRow("dotted digits", "", "1.", "");
    addHostileRow("card groups", "", "1234 ", "");
    addHostileRow("phone openings", "", "(555) ", "");
    addHostileRow("digits of another script", "", "\u0663-", "");
    addHostileRow("marks before digits", "", "\u0301", "12345");
    addHostileRow("login value that never ends", "login: ", "x", "");
    addHostileRow("credentials value that never pairs", "creds: ", "x", " ");
    addHostileRow("credentials keywords", "", "creds: ", "");
    addHostileRow("keywords", "", "username password ", "");
    addHostileRow("greetings", "", "Hi Anna. ", "");
    addHostileRow("full stops and no-break spaces", "", ".\u00a0", "hi Anna");
    addHostileRow("full stop and a long gap", ".", " ", "hi Anna");
    addHostileRow("sign-offs", "", "Anna, have a nice day ", "");
    addHostileRow("name before a long word", "Anna ", "x", "ly");
    addHostileRow("names and blanks", "", "Anna ", "regards");
}

} // namespace zentrik::test
