#include "render/incrementalrenderer.h"

#include "render/blockbuilder.h"
#include "render/markdownrenderer.h"
#include "render/opencodeblock.h"

#include <vector>

namespace zentrik {

namespace {

using SourceSpan = MarkdownRenderer::SourceSpan;

// cmark's notion of lines: "\n", "\r\n" and a lone "\r" each end one. Element i is where
// line i + 1 begins. A "\r" that ends the text may be the first half of "\r\n", so the line
// it ends does not count as complete yet.
std::vector<qsizetype> lineStarts(QStringView text)
{
    std::vector<qsizetype> starts{0};
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (c == QLatin1Char('\r') && i + 1 == text.size()) {
            break;
        }
        if (c == QLatin1Char('\r') && text.at(i + 1) == QLatin1Char('\n')) {
            ++i;
            starts.push_back(i + 1);
        } else if (c == QLatin1Char('\n') || c == QLatin1Char('\r')) {
            starts.push_back(i + 1);
        }
    }
    return starts;
}

bool isBlank(QStringView line)
{
    for (const QChar c : line) {
        if (c != QLatin1Char(' ') && c != QLatin1Char('\t') && c != QLatin1Char('\n') && c != QLatin1Char('\r')) {
            return false;
        }
    }
    return true;
}

// True when a fresh parse can begin on line `line` (1-based): the line is complete, or at
// least far enough along that what follows cannot change what it starts (a partial line
// such as "#" or "-" could still turn into something else).
bool canBeginAt(QStringView text, const std::vector<qsizetype> &starts, int line)
{
    if (line < 2 || size_t(line) > starts.size()) {
        return false;
    }
    return size_t(line) < starts.size() || OpenParagraph::lineRoleIsFixed(text.sliced(starts.at(size_t(line) - 1)));
}

// True when the block beginning on `line` parses on its own from that line on into the same
// blocks as in the context of the text before it, and the blocks before it can no longer
// change, whatever follows.
bool canStartAfresh(QStringView text, const std::vector<qsizetype> &starts, const SourceSpan &previous,
                    const SourceSpan &next)
{
    const int line = next.startLine;
    // cmark-gfm reports a paragraph that lost its last line to a table as starting on line
    // 0, and the table as starting on the paragraph's line; neither is a place to cut.
    if (previous.startLine < 1 || previous.endLine < previous.startLine || line <= previous.endLine) {
        return false;
    }
    if (!canBeginAt(text, starts, line)) {
        return false;
    }
    // A table takes its header from the last line of the paragraph above it, so a
    // paragraph right above a table is final only when a blank line ended it. Anything
    // else that follows a paragraph without a blank line has interrupted it for good.
    if (previous.kind == SourceSpan::Kind::Paragraph && next.kind == SourceSpan::Kind::Table) {
        const qsizetype lineBefore = starts.at(size_t(line) - 2);
        const qsizetype at = starts.at(size_t(line) - 1);
        if (!isBlank(text.sliced(lineBefore, at - lineBefore))) {
            return false;
        }
    }
    return true;
}

// The last item of a top-level list from which the list can be continued afresh: the items
// before it are closed, and as the view numbers items from the list's start and ignores
// whether the list is loose, they can no longer change. -1 when there is none.
qsizetype lastFreshItem(QStringView text, const std::vector<qsizetype> &starts, const SourceSpan &list)
{
    for (qsizetype k = list.items.size() - 1; k >= 1; --k) {
        const MarkdownRenderer::ItemSpan &previous = list.items.at(k - 1);
        const int line = list.items.at(k).startLine;
        if (list.startLine >= 1 && previous.startLine >= list.startLine && previous.endLine >= previous.startLine
            && line > previous.endLine && canBeginAt(text, starts, line)) {
            return k;
        }
    }
    return -1;
}

// Line `line` (1-based) without its line break.
QStringView lineText(QStringView text, const std::vector<qsizetype> &starts, int line)
{
    const qsizetype from = starts.at(size_t(line) - 1);
    qsizetype to = size_t(line) < starts.size() ? starts.at(size_t(line)) : text.size();
    while (to > from && (text.at(to - 1) == QLatin1Char('\n') || text.at(to - 1) == QLatin1Char('\r'))) {
        --to;
    }
    return text.sliced(from, to - from);
}

// The last line of a block that can no longer change, once that line is complete: headings,
// rules and closed fences end on their own last line; paragraphs, tables and quotes end at
// the blank line after them. 0 when the block may still change.
int finishedAfter(QStringView text, const std::vector<qsizetype> &starts, const SourceSpan &span)
{
    const int lineCount = int(starts.size());
    if (span.startLine < 1 || span.endLine < span.startLine || span.endLine > lineCount) {
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
            && OpenCodeBlock::isClosingFence(lineText(text, starts, span.endLine), span.fenceChar, span.fenceLength)) {
            last = span.endLine;
        }
        break;
    case SourceSpan::Kind::Paragraph:
    case SourceSpan::Kind::Table:
    case SourceSpan::Kind::Quote:
        if (span.endLine + 1 <= lineCount && isBlank(lineText(text, starts, span.endLine + 1))) {
            last = span.endLine + 1;
        }
        break;
    default:
        break;
    }
    // The line must be complete.
    return last < lineCount ? last : 0;
}

bool isContainerPrefix(QChar c)
{
    return c == QLatin1Char(' ') || c == QLatin1Char('\t') || c == QLatin1Char('>') || c == QLatin1Char('-')
           || c == QLatin1Char('+') || c == QLatin1Char('*') || c == QLatin1Char('.') || c == QLatin1Char(')')
           || c.isDigit();
}

} // namespace

void IncrementalRenderer::append(QStringView piece)
{
    if (piece.isEmpty()) {
        return;
    }
    const qsizetype oldSize = m_text.size();
    m_text.append(piece);
    noteReferenceDefinitions(oldSize > 0 ? oldSize - 1 : 0);
    if (!m_wholeText && (extendLastBlock() || finishLastBlock())) {
        return;
    }
    renderTail();
}

void IncrementalRenderer::setText(const QString &text)
{
    clear();
    m_text = text;
    noteReferenceDefinitions(0);
    renderTail();
}

void IncrementalRenderer::clear()
{
    m_text.clear();
    m_blocks.clear();
    m_wholeText = false;
    restart();
}

void IncrementalRenderer::restart()
{
    m_stableCount = 0;
    m_tailStart = 0;
    m_openList.reset();
    m_lastBlock = std::monostate();
}

qsizetype IncrementalRenderer::renderEnd() const
{
    // Half of a surrogate pair waits for its other half.
    qsizetype end = m_text.size();
    if (end > m_tailStart && m_text.at(end - 1).isHighSurrogate()) {
        --end;
    }
    return end;
}

void IncrementalRenderer::noteReferenceDefinitions(qsizetype from)
{
    // A definition is "[label]:" at the start of a paragraph, and a label holds at most 999
    // characters, so only a "]:" with a "[" opening a line shortly before it can be one.
    // Guessing too often costs only speed.
    constexpr qsizetype longestLabel = 1001;
    const QLatin1StringView closing("]:");
    for (qsizetype at = m_text.indexOf(closing, from); at >= 0 && !m_wholeText;
         at = m_text.indexOf(closing, at + 1)) {
        for (qsizetype open = at - 1; open >= 0 && open >= at - longestLabel; --open) {
            if (m_text.at(open) != QLatin1Char('[')) {
                continue;
            }
            qsizetype lineStart = open;
            while (lineStart > 0 && isContainerPrefix(m_text.at(lineStart - 1))) {
                --lineStart;
            }
            if (lineStart == 0 || m_text.at(lineStart - 1) == QLatin1Char('\n')
                || m_text.at(lineStart - 1) == QLatin1Char('\r')) {
                m_wholeText = true;
                restart();
                break;
            }
        }
    }
}

bool IncrementalRenderer::extendLastBlock()
{
    const qsizetype end = renderEnd();
    std::optional<QString> text;
    if (auto *code = std::get_if<OpenCodeBlock>(&m_lastBlock)) {
        text = code->extend(m_text, end);
    } else if (auto *paragraph = std::get_if<OpenParagraph>(&m_lastBlock)) {
        text = paragraph->extend(m_text, end);
    } else {
        return false;
    }
    if (!text) {
        return false;
    }
    MarkdownBlock &block = m_blocks.last();
    const auto *paragraph = std::get_if<OpenParagraph>(&m_lastBlock);
    if (paragraph != nullptr && paragraph->target() == OpenParagraph::Target::LastItemText) {
        block.items.last().text = *text;
    } else {
        block.text = *text;
    }
    return true;
}

// When the new text completes the last block, that block and everything before it become
// final without parsing them again; only the text after it is parsed. A closing fence
// completes a code block. When the paragraph being written ends its line, a blank line
// completes a top-level paragraph or a quote, and a new item of the same list, at the
// margin, completes a list item.
bool IncrementalRenderer::finishLastBlock()
{
    if (auto *code = std::get_if<OpenCodeBlock>(&m_lastBlock)) {
        const std::optional<OpenCodeBlock::Closed> closed = code->close(m_text, renderEnd());
        if (!closed) {
            m_lastBlock = std::monostate();
            return false;
        }
        m_blocks.last().text = closed->code;
        if (closed->next >= 0) {
            m_lastBlock = std::monostate();
            m_stableCount = m_blocks.size();
            m_openList.reset();
            m_tailStart = closed->next;
            renderTail();
        }
        return true;
    }
    auto *paragraph = std::get_if<OpenParagraph>(&m_lastBlock);
    if (paragraph == nullptr) {
        return false;
    }
    const OpenParagraph::Target target = paragraph->target();
    const qsizetype end = renderEnd();
    std::optional<OpenParagraph::LineEnd> line = paragraph->endLine(m_text, end);
    if (!line) {
        m_lastBlock = std::monostate();
        return false;
    }
    MarkdownBlock &block = m_blocks.last();
    qsizetype at = line->next;
    while (at < end && (m_text.at(at) == QLatin1Char(' ') || m_text.at(at) == QLatin1Char('\t'))) {
        ++at;
    }
    // Until the next line shows more than white space, the paragraph ends with its line.
    if (at >= end) {
        (target == OpenParagraph::Target::BlockText ? block.text : block.items.last().text) = line->richText;
        return true;
    }
    m_lastBlock = std::monostate();
    if (target == OpenParagraph::Target::BlockText) {
        if ((m_text.at(at) == QLatin1Char('\r') && at + 1 >= end)
            || (m_text.at(at) != QLatin1Char('\n') && m_text.at(at) != QLatin1Char('\r'))) {
            return false;
        }
        block.text = line->richText;
        m_openList.reset();
        m_tailStart = QStringView(m_text).sliced(at).startsWith(QLatin1String("\r\n")) ? at + 2 : at + 1;
        m_stableCount = m_blocks.size();
        // A new paragraph of plain text needs no parse to show.
        QString rich;
        if (auto next = OpenParagraph::openPlain(m_text, m_tailStart, m_tailStart, end,
                                                 OpenParagraph::Target::BlockText, rich)) {
            MarkdownBlock paragraph;
            paragraph.text = rich;
            m_blocks.append(paragraph);
            m_lastBlock = std::move(*next);
            return true;
        }
    } else {
        if (!m_listMarker || !startsSiblingItem(QStringView(m_text).sliced(line->next, end - line->next))) {
            return false;
        }
        block.items.last().text = line->richText;
        OpenList open;
        open.block = block;
        open.parenDelimiter = m_listMarker->parenDelimiter;
        for (qsizetype i = block.items.size() - 1; i >= 0; --i) {
            const MarkdownListItem &item = block.items.at(i);
            if (item.depth == 0 && !item.marker.isEmpty()) {
                open.nextNumber = item.marker.chopped(1).toLongLong() + 1;
                break;
            }
        }
        m_openList = std::move(open);
        m_tailStart = line->next;
        m_stableCount = m_blocks.size();
        if (startPlainItem(end)) {
            return true;
        }
    }
    renderTail();
    return true;
}

// Shows a new item of the open list whose first line so far is plain text without a parse:
// the item is one paragraph of that text, numbered on from the items before it.
bool IncrementalRenderer::startPlainItem(qsizetype end)
{
    const QStringView line = QStringView(m_text).sliced(m_tailStart, end - m_tailStart);
    qsizetype at = 0;
    while (at < line.size() && at < 9 && line.at(at).isDigit()) {
        ++at;
    }
    ++at; // the bullet or the number's delimiter
    qsizetype spaces = 0;
    while (at + spaces < line.size() && line.at(at + spaces) == QLatin1Char(' ')) {
        ++spaces;
    }
    // Five spaces or more would start indented code inside the item.
    if (spaces < 1 || spaces > 4) {
        return false;
    }
    QString rich;
    auto item = OpenParagraph::openPlain(m_text, m_tailStart, m_tailStart + at + spaces, end,
                                         OpenParagraph::Target::LastItemText, rich);
    if (!item) {
        return false;
    }
    MarkdownListItem entry;
    entry.text = rich;
    entry.marker = m_listMarker->bullet.isNull()
                       ? BlockBuilder::numberMarker(m_openList->nextNumber, m_openList->parenDelimiter ? CMARK_PAREN_DELIM
                                                                                                        : CMARK_PERIOD_DELIM)
                       : m_openList->block.items.constFirst().marker;
    m_blocks.last().items.append(entry);
    m_lastBlock = std::move(*item);
    return true;
}

// True when the text begins a new item of the list being written, at the margin like its
// other items, far enough along that it cannot turn into anything else.
bool IncrementalRenderer::startsSiblingItem(QStringView text) const
{
    qsizetype lineEnd = 0;
    while (lineEnd < text.size() && text.at(lineEnd) != QLatin1Char('\n') && text.at(lineEnd) != QLatin1Char('\r')) {
        ++lineEnd;
    }
    const QStringView line = text.first(lineEnd);
    qsizetype at = 0;
    if (m_listMarker->bullet.isNull()) {
        while (at < line.size() && at < 9 && line.at(at).isDigit()) {
            ++at;
        }
        if (at == 0 || at >= line.size()
            || line.at(at) != (m_listMarker->parenDelimiter ? QLatin1Char(')') : QLatin1Char('.'))) {
            return false;
        }
    } else if (line.isEmpty() || line.at(0) != m_listMarker->bullet) {
        return false;
    }
    ++at;
    return at < line.size() && (line.at(at) == QLatin1Char(' ') || line.at(at) == QLatin1Char('\t'))
           && OpenParagraph::lineRoleIsFixed(line);
}

void IncrementalRenderer::renderTail()
{
    m_lastBlock = std::monostate();
    const qsizetype end = renderEnd();
    const qsizetype tailStart = m_tailStart;
    const QStringView tail = QStringView(m_text).sliced(tailStart, end - tailStart);
    QList<MarkdownBlock> parsed;
    QList<SourceSpan> spans;
    // cmark drops a byte order mark at the very start of a document; one that begins the
    // tail is text, so a blank line goes in front of it and the line numbers are moved back.
    if (tailStart > 0 && tail.startsWith(QChar(0xfeff))) {
        MarkdownRenderer::renderInto(QByteArray("\n") + tail.toUtf8(), parsed, &spans);
        for (SourceSpan &span : spans) {
            --span.startLine;
            --span.endLine;
            for (MarkdownRenderer::ItemSpan &item : span.items) {
                --item.startLine;
                --item.endLine;
            }
        }
    } else {
        MarkdownRenderer::renderInto(tail.toUtf8(), parsed, &spans);
    }

    // m_blocks[first + i] is the block of spans[i].
    qsizetype first = m_stableCount;
    m_blocks.resize(m_stableCount);
    qsizetype openEntries = 0;
    if (m_openList) {
        // The tail starts at an item of the open list, so it parses into the rest of it.
        if (spans.isEmpty() || spans.first().kind != SourceSpan::Kind::List
            || parsed.first().type != m_openList->block.type) {
            restart();
            renderTail();
            return;
        }
        first = m_stableCount - 1;
        MarkdownBlock merged = m_openList->block;
        openEntries = merged.items.size();
        qint64 number = m_openList->nextNumber;
        for (MarkdownListItem item : parsed.first().items) {
            if (item.depth == 0 && !item.marker.isEmpty() && merged.type == MarkdownBlock::Type::OrderedList) {
                item.marker = BlockBuilder::numberMarker(number++, m_openList->parenDelimiter ? CMARK_PAREN_DELIM
                                                                                               : CMARK_PERIOD_DELIM);
            }
            merged.items.append(item);
        }
        m_blocks.last() = merged;
        parsed.removeFirst();
    }
    m_blocks.append(std::move(parsed));
    if (m_wholeText || spans.isEmpty()) {
        return;
    }

    const std::vector<qsizetype> starts = lineStarts(tail);
    const qsizetype last = spans.size() - 1;
    // The furthest cut is inside a list being written, before its last item.
    if (const SourceSpan &list = spans.at(last); list.kind == SourceSpan::Kind::List) {
        if (const qsizetype item = lastFreshItem(tail, starts, list); item > 0) {
            const bool continued = last == 0 && m_openList.has_value();
            OpenList open;
            open.block = m_blocks.at(first + last);
            open.block.items.resize((continued ? openEntries : 0) + list.items.at(item).firstEntry);
            open.nextNumber = (continued ? m_openList->nextNumber : list.listStart) + item;
            open.parenDelimiter = continued ? m_openList->parenDelimiter : list.parenDelimiter;
            m_openList = std::move(open);
            m_stableCount = first + last + 1;
            m_tailStart = tailStart + starts.at(size_t(list.items.at(item).startLine) - 1);
            if (!tail.endsWith(QLatin1Char('\r'))) {
                prepareToExtend(list, m_tailStart, tailStart + starts.back(), end, m_tailStart);
            }
            return;
        }
    }
    // Otherwise the furthest cut after a block that has ended, or before one that began.
    for (qsizetype j = last; j >= 0; --j) {
        const int finished = finishedAfter(tail, starts, spans.at(j));
        if (finished > 0 && (j == last || spans.at(j + 1).startLine > finished)) {
            m_tailStart = tailStart + starts.at(size_t(finished));
            m_stableCount = first + j + 1;
            m_openList.reset();
            break;
        }
        const int line = spans.at(j).startLine;
        if (j >= 1 && canStartAfresh(tail, starts, spans.at(j - 1), spans.at(j))) {
            m_tailStart = tailStart + starts.at(size_t(line) - 1);
            m_stableCount = first + j;
            m_openList.reset();
            break;
        }
    }
    if (stableBlockCount() > first + last) {
        return;
    }

    // Get ready to extend the last block without parsing it again.
    if (tail.endsWith(QLatin1Char('\r'))) {
        return;
    }
    const SourceSpan &span = spans.at(last);
    if (span.kind == SourceSpan::Kind::FencedCode && span.fenceOffset == 0 && span.startLine >= 1
        && size_t(span.startLine) < starts.size()) {
        if (auto code = OpenCodeBlock::open(m_text, tailStart + starts.at(size_t(span.startLine)), end,
                                            span.fenceChar, span.fenceLength)) {
            m_lastBlock = std::move(*code);
        }
    } else if (span.kind == SourceSpan::Kind::Paragraph && span.startLine >= 1 && size_t(span.endLine) == starts.size()) {
        if (auto paragraph = OpenParagraph::openTopLevel(m_text, tailStart + starts.at(size_t(span.startLine) - 1),
                                                         tailStart + starts.back(), end)) {
            m_lastBlock = std::move(*paragraph);
        }
    } else {
        const qsizetype itemStart = span.items.isEmpty() || span.items.last().startLine < 1
                                        ? -1
                                        : tailStart + starts.at(size_t(span.items.last().startLine) - 1);
        prepareToExtend(span, m_tailStart, tailStart + starts.back(), end, itemStart);
    }
}

// Gets ready to extend the paragraph at the end of a list or quote that ends the tail,
// without parsing the tail again. itemStart: where the list's last item begins.
void IncrementalRenderer::prepareToExtend(const MarkdownRenderer::SourceSpan &span, qsizetype tailStart,
                                          qsizetype lineStart, qsizetype end, qsizetype itemStart)
{
    m_listMarker.reset();
    if (span.kind != SourceSpan::Kind::List && span.kind != SourceSpan::Kind::Quote) {
        return;
    }
    // Items that start at the margin can be told apart from nested ones by their first
    // character alone.
    if (span.kind == SourceSpan::Kind::List && itemStart >= 0 && itemStart < end) {
        const QChar first = m_text.at(itemStart);
        if (first == QLatin1Char('-') || first == QLatin1Char('*') || first == QLatin1Char('+')) {
            m_listMarker = ListMarker{first, false};
        } else if (first.isDigit()) {
            m_listMarker = ListMarker{QChar(), span.parenDelimiter};
        }
    }
    const auto target = span.kind == SourceSpan::Kind::List ? OpenParagraph::Target::LastItemText
                                                            : OpenParagraph::Target::BlockText;
    if (auto paragraph = OpenParagraph::openNested(m_text, tailStart, lineStart, end, target)) {
        m_lastBlock = std::move(*paragraph);
    }
}

} // namespace zentrik
