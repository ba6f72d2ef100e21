#pragma once

#include <QByteArrayView>
#include <QList>

namespace zentrik::renderbudget {

// How much of a reply cmark-gfm is handed in one parse. Its address autolinks copy the rest
// of a paragraph for every '@' in it, and a parse keeps its memory until it ends, so a
// paragraph of 16,000 addresses took over 400 MB and a 50 MB line ran out of memory. A reply
// within both bounds is parsed whole, as always; a larger one is parsed in parts that end at
// blank lines outside code fences, and a part still beyond the bounds is shown as plain text.
inline constexpr qsizetype maxParseBytes = 1 << 20;
// The number of '@' in each run of lines between blank lines times that run's length, summed:
// about 64 MB of cmark's memory (2,000 addresses in one paragraph of 32 KB).
inline constexpr qint64 maxAddressWork = qint64(64) << 20;
// Parts hold runs of lines up to this size.
inline constexpr qsizetype partBytes = 256 << 10;

[[nodiscard]] bool fitsOneParse(QByteArrayView utf8);

// Consecutive pieces of the text, each ending after a blank line (the last one at the end of
// the text), none cut inside a fenced code block. Each holds as many whole runs of lines
// between blank lines as fit partBytes and the address budget, or a single run too large
// for them.
[[nodiscard]] QList<QByteArrayView> parts(QByteArrayView utf8);

} // namespace zentrik::renderbudget
