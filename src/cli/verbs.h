#pragma once

#include "verb.h"

namespace zentrik::cli {

// One per verb_*.cpp; verbtable.cpp lists them in the order --help shows them.
[[nodiscard]] Verb askVerb();
[[nodiscard]] Verb assistantsVerb();
[[nodiscard]] Verb configVerb();
[[nodiscard]] Verb debugVerb();
[[nodiscard]] Verb generateVerb();
[[nodiscard]] Verb historyVerb();
[[nodiscard]] Verb imageVerb();
[[nodiscard]] Verb keysVerb();
[[nodiscard]] Verb markdownVerb();
[[nodiscard]] Verb modelsVerb();
[[nodiscard]] Verb notesVerb();
[[nodiscard]] Verb pdfVerb();
[[nodiscard]] Verb promptVerb();
[[nodiscard]] Verb providersVerb();
[[nodiscard]] Verb redactVerb();
[[nodiscard]] Verb sampleDataVerb();
[[nodiscard]] Verb transcribeVerb();

} // namespace zentrik::cli
