#include "privacy/namelookup.h"

#include "privacy/wordboundaryprobe.h"

#include <algorithm>

namespace zentrik {

bool NameLookup::canIndex(const QStringList &names)
{
    if (names.isEmpty()) {
        return false;
    }
    return std::all_of(names.begin(), names.end(), [](const QString &name) {
        return !name.isEmpty() && std::all_of(name.begin(), name.end(), [](QChar c) {
            return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z');
        });
    });
}

NameLookup::NameLookup(const QStringList &names)
    : m_count(int(names.size()))
{
    for (int index = 0; index < m_count; ++index) {
        const std::string key = names.at(index).toLower().toStdString();
        Entry &entry = m_byName[key];
        if (index == 0) {
            entry.isFirst = true;
        }
        if (index == m_count - 1) {
            entry.isLast = true;
        }
        if (index > 0 && index < m_count - 1) {
            entry.firstInnerIndex = std::min(entry.firstInnerIndex, index);
        }
        m_longest = std::max(m_longest, key.size());
        const auto end = key.rbegin();
        if (key.size() >= 2) {
            m_endings2.set(letterIndex(end[0], end[1]));
        }
        if (key.size() >= 3) {
            m_endings3.set(letterIndex(end[0], end[1], end[2]));
        }
    }
    for (const auto &[key, entry] : m_byName) {
        m_byReversedName.emplace(std::string(key.rbegin(), key.rend()), entry);
    }
}

const NameLookup::Entry *NameLookup::find(std::string_view foldedName) const
{
    const auto it = m_byName.find(foldedName);
    return it == m_byName.end() ? nullptr : &it->second;
}

const NameLookup::Entry *NameLookup::findReversed(std::string_view reversedFoldedName) const
{
    const auto it = m_byReversedName.find(reversedFoldedName);
    return it == m_byReversedName.end() ? nullptr : &it->second;
}

int NameLookup::matchingIndex(const Entry &entry, WordBoundaryProbe &boundary, int32_t start, int32_t end) const
{
    // With a single name, that name is both first and last and needs both boundaries.
    const bool firstFits = entry.isFirst && boundary.at(start) && (m_count > 1 || boundary.at(end));
    if (firstFits) {
        return 0;
    }
    if (entry.firstInnerIndex != INT_MAX) {
        return entry.firstInnerIndex;
    }
    const bool lastFits = entry.isLast && boundary.at(end) && (m_count > 1 || boundary.at(start));
    return lastFits ? m_count - 1 : INT_MAX;
}

} // namespace zentrik
