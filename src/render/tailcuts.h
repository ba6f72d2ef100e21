#pragma once

#include "render/markdownrenderer.h"

#include <QStringView>

#include <vector>

namespace zentrik {

// The lines of the unfinished tail of a streamed reply, and the places in it where a
// fresh parse may begin: places after which parsing the rest on its own gives the same
// blocks as in context, and before which nothing can change any more, whatever follows.
// Lines are cmark's: "\n", "\r\n" and a lone "\r" each end one, and numbers start at 1.
class TailCuts
{
public:
    using SourceSpan = MarkdownRenderer::SourceSpan;

    explicit TailCuts(QStringView tail);

    // The number of the last line, which may be empty or unfinished.
    [[nodiscard]] int lineCount() const { return int(m_starts.size()); }
    [[nodiscard]] qsizetype lineStart(int line) const { return m_starts.at(size_t(line) - 1); }
    [[nodiscard]] QStringView lineText(int line) const;

    // A fresh parse can begin on this line: it is complete, or far enough along that what
    // follows cannot change what it starts.
    [[nodiscard]] bool canBeginAt(int line) const;
    // The block `next` can be parsed on its own from its first line, and the block before
    // it can no longer change.
    [[nodiscard]] bool canStartAfresh(const SourceSpan &previous, const SourceSpan &next) const;
    // The last line of a block that can no longer change, once that line is complete; 0
    // while the block may still change.
    [[nodiscard]] int finishedAfter(const SourceSpan &span) const;
    // The last item of a list from which the list can be continued afresh; -1 if none.
    [[nodiscard]] qsizetype lastFreshItem(const SourceSpan &list) const;
    // The line of the last row of a table that ends the tail, when a parse can begin
    // there; 0 if none. The row must come after the line `after`, which stays final.
    [[nodiscard]] int lastFreshRow(const SourceSpan &table, int after) const;

    [[nodiscard]] static bool isBlank(QStringView line);

private:
    QStringView m_text;
    std::vector<qsizetype> m_starts; // element i: where line i + 1 begins
};

} // namespace zentrik
