#pragma once

#include <QStringList>

#include <bitset>
#include <climits>
#include <string>
#include <string_view>
#include <unordered_map>

namespace zentrik {

class WordBoundaryProbe;

// The name list of a NameRedactorPII, indexed for matching without the regex engine.
//
// The list enters both name patterns as "\b" + names joined by "|" + "\b". Alternation binds
// loosest, so only the first name carries the leading word boundary and only the last one
// the trailing one; every name in between matches anywhere, also inside longer words.
// Where several names fit at the same place, the engine takes the first in list order.
// Names are keyed by their case folding (lower-case ASCII for plain words), which is what
// case-insensitive matching compares.
class NameLookup
{
public:
    struct Entry
    {
        int firstInnerIndex = INT_MAX; // smallest list index other than the first and last
        bool isFirst = false;
        bool isLast = false;
    };

    // True when every name is a plain word of ASCII letters and the list is not empty: the
    // lists this index reproduces the regex engine for.
    [[nodiscard]] static bool canIndex(const QStringList &names);

    explicit NameLookup(const QStringList &names);

    [[nodiscard]] const Entry *find(std::string_view foldedName) const;
    [[nodiscard]] const Entry *findReversed(std::string_view reversedFoldedName) const;
    [[nodiscard]] std::size_t longestName() const { return m_longest; }

    // Whether a name of at least two (three) letters ends in these folded letters, given
    // back to front: a cheap way to rule out most words before looking up their endings.
    [[nodiscard]] bool someNameEndsWith(char last, char secondLast) const
    {
        return m_endings2.test(letterIndex(last, secondLast));
    }
    [[nodiscard]] bool someNameEndsWith(char last, char secondLast, char thirdLast) const
    {
        return m_endings3.test(letterIndex(last, secondLast, thirdLast));
    }

    // The list index of the name that the engine would take for this entry's text at
    // [start, end), or INT_MAX when the word boundaries the first and last names need are
    // missing there.
    [[nodiscard]] int matchingIndex(const Entry &entry, WordBoundaryProbe &boundary, int32_t start, int32_t end) const;

private:
    struct Hash
    {
        using is_transparent = void;
        std::size_t operator()(std::string_view key) const { return std::hash<std::string_view> {}(key); }
    };
    using Map = std::unordered_map<std::string, Entry, Hash, std::equal_to<>>;

    static std::size_t letterIndex(char a, char b) { return std::size_t(a - 'a') * 26 + std::size_t(b - 'a'); }
    static std::size_t letterIndex(char a, char b, char c) { return letterIndex(a, b) * 26 + std::size_t(c - 'a'); }

    Map m_byName;
    Map m_byReversedName;
    int m_count = 0;
    std::size_t m_longest = 0;
    std::bitset<std::size_t(26 * 26)> m_endings2;
    std::bitset<std::size_t(26 * 26 * 26)> m_endings3;
};

} // namespace zentrik
