#include "render/tailcuts.h"

#include "render/linetext.h"
#include "render/opencodeblock.h"

namespace zentrik {

TailCuts::TailCuts(QStringView tail)
    : m_text(tail)
    , m_starts { 0 }
{
    for (qsizetype i = 0; i < tail.size(); ++i) {
        const QChar c = tail.at(i);
        // A "\r" that ends the text may be the first half of "\r\n", so the line it ends does
        // not count as complete yet.
        if (c == QLatin1Char('\r') && i + 1 == tail.size()) {
            break;
        }
        if (c == QLatin1Char('\r') && tail.at(i + 1) == QLatin1Char('\n')) {
            ++i;
            m_starts.push_back(i + 1);
        } else if (c == QLatin1Char('\n') || c == QLatin1Char('\r')) {
            m_starts.push_back(i + 1);
        }
    }
}

QStringView TailCuts::lineText(int line) const
{
    const qsizetype from = lineStart(line);
    qsizetype to = line < lineCount() ? lineStart(line + 1) : m_text.size();
    while (to > from && (m_text.at(to - 1) == QLatin1Char('\n') || m_text.at(to - 1) == QLatin1Char('\r'))) {
        --to;
    }
    return m_text.sliced(from, to - from);
}

bool TailCuts::isBlank(QStringView line)
{
    for (const QChar c : line) {
        if (c != QLatin1Char(' ') && c != QLatin1Char('\t') && c != QLatin1Char('\n') && c != QLatin1Char('\r')) {
            return false;
        }
    }
    return true;
}

bool TailCuts::canBeginAt(int line) const
{
    if (line < 2 || line > lineCount()) {
        return false;
    }
    // A partial line such as "#" or "-" could still turn into something else.
    return line < lineCount() || LineText::roleIsFixed(m_text.sliced(lineStart(line)));
}

bool TailCuts::canStartAfresh(const SourceSpan &previous, const SourceSpan &next) const
{
    const int line = next.startLine;
    // cmark-gfm reports a paragraph that lost its last line to a table as starting on line
    // 0, and the table as starting on the paragraph's line; neither is a place to cut.
    if (previous.startLine < 1 || previous.endLine < previous.startLine || line <= previous.endLine) {
        return false;
    }
    if (!canBeginAt(line)) {
        return false;
    }
    // A table takes its header from the last line of the paragraph above it, so a
    // paragraph right above a table is final only when a blank line ended it. Anything
    // else that follows a paragraph without a blank line has interrupted it for good.
    if (previous.kind == SourceSpan::Kind::Paragraph && next.kind == SourceSpan::Kind::Table) {
        return isBlank(m_text.sliced(lineStart(line - 1), lineStart(line) - lineStart(line - 1)));
    }
    return true;
}

// Headings, rules and closed fences end on their own last line; paragraphs, tables and
// quotes end at the blank line after them.
int TailCuts::finishedAfter(const SourceSpan &span) const
{
    if (span.startLine < 1 || span.endLine < span.startLine || span.endLine > lineCount()) {
        return 0;
    }
    int last = 0;
    switch (span.kind) {
    case SourceSpan::Kind::Heading:
    case SourceSpan::Kind::Rule:
        last = span.endLine;
        break;
    case SourceSpan::Kind::FencedCode:
        if (span.endLine > span.startLine
            && OpenCodeBlock::isClosingFence(lineText(span.endLine), span.fenceChar, span.fenceLength)) {
            last = span.endLine;
        }
        break;
    case SourceSpan::Kind::Paragraph:
    case SourceSpan::Kind::Table:
    case SourceSpan::Kind::Quote:
        if (span.endLine + 1 <= lineCount() && isBlank(lineText(span.endLine + 1))) {
            last = span.endLine + 1;
        }
        break;
    default:
        break;
    }
    return last < lineCount() ? last : 0;
}

// The items before it are closed, and as the view numbers items from the list's start and
// ignores whether the list is loose, they can no longer change.
qsizetype TailCuts::lastFreshItem(const SourceSpan &list) const
{
    for (qsizetype k = list.items.size() - 1; k >= 1; --k) {
        const MarkdownRenderer::ItemSpan &previous = list.items.at(k - 1);
        const int line = list.items.at(k).startLine;
        if (list.startLine >= 1 && previous.startLine >= list.startLine && previous.endLine >= previous.startLine
            && line > previous.endLine && canBeginAt(line)) {
            return k;
        }
    }
    return -1;
}

// Every line of a table after its delimiter row is one row, parsed on its own, so the rows
// before the last one are final once the last one has begun.
int TailCuts::lastFreshRow(const SourceSpan &table, int after) const
{
    const int line = lineCount();
    if (table.kind != SourceSpan::Kind::Table || table.startLine < 1 || table.endLine != line || line <= after
        || isBlank(lineText(line)) || !canBeginAt(line)) {
        return 0;
    }
    return line;
}

} // namespace zentrik
