#pragma once

#include <QChar>
#include <QStringView>

#include <optional>

namespace zentrik {

// How the items of a list being streamed begin at the margin: a bullet character, or a
// number followed by "." or ")". Items that start at the margin can be told apart from
// nested ones by their first character alone.
class ListMarker
{
public:
    // The marker of the list whose item begins with `first`; nothing when that is neither a
    // bullet nor a digit.
    [[nodiscard]] static std::optional<ListMarker> of(QChar first, bool parenDelimiter);

    // True when the text begins a new item of the list, at the margin like its other items,
    // far enough along that it cannot turn into anything else.
    [[nodiscard]] bool startsItem(QStringView text) const;
    [[nodiscard]] bool parenDelimiter() const { return m_parenDelimiter; }

    // Where the content of an item's first line begins, after its marker and the spaces that
    // follow it; -1 when no space follows, or five or more do (indented code inside the item).
    [[nodiscard]] static qsizetype contentStart(QStringView line);

private:
    ListMarker(QChar bullet, bool parenDelimiter)
        : m_bullet(bullet)
        , m_parenDelimiter(parenDelimiter)
    { }

    QChar m_bullet; // null for a number
    bool m_parenDelimiter;
};

} // namespace zentrik
