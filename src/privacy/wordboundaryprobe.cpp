#include "privacy/wordboundaryprobe.h"

#include "privacy/icutext.h"

namespace zentrik {

namespace {
const icu::RegexPattern *boundaryPattern()
{
    static const std::unique_ptr<icu::RegexPattern> pattern = icutext::compile(icu::UnicodeString(u"\\b"), 0);
    return pattern.get();
}
} // namespace

WordBoundaryProbe::WordBoundaryProbe(const icu::UnicodeString &text)
    : m_length(text.length())
{
    if (const icu::RegexPattern *pattern = boundaryPattern()) {
        m_matcher = icutext::matcher(*pattern, text);
    }
}

bool WordBoundaryProbe::at(int32_t position)
{
    return m_matcher && position >= 0 && position <= m_length && icutext::matchesAt(*m_matcher, position);
}

} // namespace zentrik
