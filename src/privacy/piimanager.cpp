#include "privacy/piimanager.h"

#include "privacy/nameredactorpii.h"
#include "privacy/patternpass.h"

#include <array>
#include <utility>

namespace zentrik {

namespace {

template<std::size_t... Index>
std::array<PatternPass, sizeof...(Index)> makePasses(std::index_sequence<Index...> /*indices*/)
{
    return { PatternPass(redactionRules[Index])... };
}

const std::array<PatternPass, redactionRules.size()> &patternPasses()
{
    static const auto passes = makePasses(std::make_index_sequence<redactionRules.size()>());
    return passes;
}

} // namespace

QString PIIManager::redact(const QString &text)
{
    QString current = NameRedactorPII::shared().redact(text);
    // Two buffers take turns, so that long texts don't pay for fresh memory on every pass.
    QString spare;
    for (const PatternPass &pass : patternPasses()) {
        if (pass.applyInto(current, spare)) {
            current.swap(spare);
        }
    }
    return current;
}

} // namespace zentrik
