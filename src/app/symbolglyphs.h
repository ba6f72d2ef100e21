#pragma once

#include <QString>
#include <QStringList>

namespace zentrik::SymbolGlyphs {

// The catalogues, the dashboard and the screens name their icons by system symbol names
// ("doc.text", "brain.head.profile"); this is the one table that turns each into a glyph
// of the bundled Material Icons font.

// The glyph's code point, or 0 for a name the table does not know.
[[nodiscard]] char32_t codepoint(const QString &symbol);
// The glyph as text for the icon font; a name the table does not know shows a question
// mark in a circle (and is logged once) rather than nothing.
[[nodiscard]] QString glyph(const QString &symbol);
// Every name the table knows.
[[nodiscard]] QStringList symbols();

inline constexpr char32_t fallbackCodepoint = 0xe8fd; // help_outline

// Where the icon font sits among the program's resources.
inline const QString iconFontResource = QStringLiteral(":/fonts/MaterialIcons-Regular.ttf");

} // namespace zentrik::SymbolGlyphs
