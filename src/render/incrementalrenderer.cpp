#include "render/incrementalrenderer.h"

#include "render/linetext.h"
#include "render/renderbudget.h"
#include "render/tablerows.h"
#include "render/tailcuts.h"

namespace zentrik {

namespace {

void moveLines(QList<MarkdownRenderer::SourceSpan> &spans, int lines)
{
    for (MarkdownRenderer::SourceSpan &span : spans) {
        span.startLine -= lines;
        span.endLine -= lines;
        for (MarkdownRenderer::ItemSpan &item : span.items) {
            item.startLine -= lines;
            item.endLine -= lines;
        }
    }
}

} // namespace

void IncrementalRenderer::append(QStringView piece)
{
    if (piece.isEmpty()) {
        return;
    }
    const qsizetype oldSize = m_text.size();
    m_text.append(piece);
    if (isPlain()) {
        appendPlainText();
        return;
    }
    // UTF-8 takes at least a byte per character, so a whole render of a text this long is
    // cut into parts too.
    if (m_text.size() > renderbudget::maxParseBytes) {
        continueAsPlainText();
        return;
    }
    noteReferenceDefinitions(oldSize > 0 ? oldSize - 1 : 0);
    if (!m_wholeText && (extendLastBlock() || finishLastBlock() || extendTable())) {
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
    m_plain.reset();
    restart();
}

void IncrementalRenderer::continueAsPlainText()
{
    // The blocks before the tail are final (an open list or table keeps what it holds);
    // everything from the tail on becomes plain text.
    m_blocks.resize(m_stableCount);
    m_plain.emplace(m_tailStart);
    m_openBlock.reset();
    m_lastBlock.reset();
    appendPlainText();
}

void IncrementalRenderer::appendPlainText()
{
    qsizetype end = renderEnd();
    // A carriage return waits for the line feed that may follow it.
    if (end > m_plain->done() && m_text.at(end - 1) == QLatin1Char('\r')) {
        --end;
    }
    if (end <= m_plain->done()) {
        return;
    }
    m_plain->append(m_text, end, m_blocks);
    m_tailStart = m_plain->done();
    // The last block grows with the next piece; the ones before it are final.
    m_stableCount = m_blocks.size() - 1;
}

void IncrementalRenderer::restart()
{
    m_stableCount = 0;
    m_tailStart = 0;
    m_openBlock.reset();
    m_lastBlock.reset();
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
    if (!m_wholeText && LineText::mayDefineReference(m_text, from)) {
        m_wholeText = true;
        restart();
    }
}

// Parses the tail; the spans' line numbers count from the tail's first line.
void IncrementalRenderer::parseTail(QStringView tail, QList<MarkdownBlock> &parsed, QList<SourceSpan> &spans) const
{
    if (m_openBlock && m_openBlock->isTable()) {
        // The rows of a table parse into one only behind its header.
        MarkdownRenderer::renderInto(m_openBlock->prefix() + tail.toUtf8(), parsed, &spans);
        moveLines(spans, OpenBlock::prefixLines());
        if (!spans.isEmpty()) {
            spans.first().startLine = 1;
        }
    } else if (m_tailStart > 0 && tail.startsWith(QChar(0xfeff))) {
        // cmark drops a byte order mark at the very start of a document only; one that
        // begins the tail is text, so a line break goes in front of it.
        MarkdownRenderer::renderInto(QByteArray("\n") + tail.toUtf8(), parsed, &spans);
        moveLines(spans, 1);
    } else {
        MarkdownRenderer::renderInto(tail.toUtf8(), parsed, &spans);
    }
}

void IncrementalRenderer::renderTail()
{
    m_lastBlock.close();
    const qsizetype end = renderEnd();
    const QStringView tail = QStringView(m_text).sliced(m_tailStart, end - m_tailStart);
    QList<MarkdownBlock> parsed;
    QList<SourceSpan> spans;
    parseTail(tail, parsed, spans);

    // m_blocks[first + i] is the block of spans[i].
    qsizetype first = m_stableCount;
    m_blocks.resize(m_stableCount);
    qsizetype openEntries = 0;
    if (m_openBlock) {
        // The tail starts at an item or row of the open block, so it parses into the rest.
        const std::optional<MarkdownBlock> whole
            = parsed.isEmpty() ? std::nullopt : m_openBlock->merged(parsed.first());
        if (!whole) {
            restart();
            renderTail();
            return;
        }
        first = m_stableCount - 1;
        openEntries = m_openBlock->block().items.size();
        m_blocks.last() = *whole;
        parsed.removeFirst();
    }
    m_blocks.append(std::move(parsed));
    if (!m_wholeText && !spans.isEmpty()) {
        cutTail(tail, spans, first, openEntries);
    }
}

// Moves the start of the tail as far on as the blocks before it are final, and gets ready
// to extend the last block without parsing it again.
void IncrementalRenderer::cutTail(
    QStringView tail, const QList<SourceSpan> &spans, qsizetype first, qsizetype openEntries)
{
    const TailCuts cuts(tail);
    const qsizetype tailStart = m_tailStart;
    const qsizetype last = spans.size() - 1;
    const SourceSpan &lastSpan = spans.at(last);
    const bool continued = last == 0 && m_openBlock.has_value();
    const qsizetype lastLineStart = tailStart + cuts.lineStart(cuts.lineCount());
    const bool unfinishedBreak = tail.endsWith(QLatin1Char('\r'));

    // The furthest cuts are inside a list or table being written, before its last item or row.
    if (const qsizetype item = cuts.lastFreshItem(lastSpan); item > 0 && lastSpan.kind == SourceSpan::Kind::List) {
        const qint64 number = (continued ? m_openBlock->nextNumber() : lastSpan.listStart) + item;
        const bool paren = continued ? m_openBlock->parenDelimiter() : lastSpan.parenDelimiter;
        m_openBlock = OpenBlock::list(m_blocks.at(first + last),
            (continued ? openEntries : 0) + lastSpan.items.at(item).firstEntry, number, paren);
        m_stableCount = first + last + 1;
        m_tailStart = tailStart + cuts.lineStart(lastSpan.items.at(item).startLine);
        if (!unfinishedBreak) {
            prepareToExtend(lastSpan, m_tailStart, lastLineStart, m_tailStart);
        }
        return;
    }
    // A fresh table opens once its first row has begun: the header and delimiter lines are
    // complete then, and its rows are rendered on their own from there.
    const int keptLine = continued && m_openBlock->isTable() ? 1 : lastSpan.startLine + 1;
    if (const int row = cuts.lastFreshRow(lastSpan, keptLine); row > 0) {
        std::optional<OpenBlock> open;
        if (continued && m_openBlock->isTable()) {
            open = m_openBlock->withTable(m_blocks.at(first + last));
        } else {
            const qsizetype headerStart = cuts.lineStart(lastSpan.startLine);
            open = OpenBlock::table(m_blocks.at(first + last),
                tail.sliced(headerStart, cuts.lineStart(lastSpan.startLine + 2) - headerStart));
        }
        if (open) {
            m_openBlock = std::move(open);
            m_stableCount = first + last + 1;
            m_tailStart = tailStart + cuts.lineStart(row);
            return;
        }
    }
    // Otherwise the furthest cut after a block that has ended, or before one that began.
    for (qsizetype j = last; j >= 0; --j) {
        const int finished = cuts.finishedAfter(spans.at(j));
        if (finished > 0 && (j == last || spans.at(j + 1).startLine > finished)) {
            commitUpTo(tailStart + cuts.lineStart(finished + 1));
            m_stableCount = first + j + 1;
            break;
        }
        if (j >= 1 && cuts.canStartAfresh(spans.at(j - 1), spans.at(j))) {
            commitUpTo(tailStart + cuts.lineStart(spans.at(j).startLine));
            m_stableCount = first + j;
            break;
        }
    }
    if (stableBlockCount() > first + last || unfinishedBreak) {
        return;
    }
    const qsizetype spanStart = tailStart + cuts.lineStart(std::max(lastSpan.startLine, 1));
    if (lastSpan.kind == SourceSpan::Kind::FencedCode && lastSpan.fenceOffset == 0 && lastSpan.startLine >= 1
        && lastSpan.startLine < cuts.lineCount()) {
        if (auto code = OpenCodeBlock::open(m_text, tailStart + cuts.lineStart(lastSpan.startLine + 1), renderEnd(),
                lastSpan.fenceChar, lastSpan.fenceLength)) {
            m_lastBlock.write(*code);
        }
    } else if (lastSpan.kind == SourceSpan::Kind::Paragraph && lastSpan.startLine >= 1
        && lastSpan.endLine == cuts.lineCount()) {
        if (auto paragraph = OpenParagraph::openTopLevel(m_text, spanStart, lastLineStart, renderEnd())) {
            m_lastBlock.write(std::move(*paragraph));
        }
    } else {
        const qsizetype itemStart = lastSpan.items.isEmpty() || lastSpan.items.last().startLine < 1
            ? -1
            : tailStart + cuts.lineStart(lastSpan.items.last().startLine);
        prepareToExtend(lastSpan, m_tailStart, lastLineStart, itemStart);
    }
}

void IncrementalRenderer::commitUpTo(qsizetype tailStart)
{
    m_tailStart = tailStart;
    m_openBlock.reset();
}

// Gets ready to extend the paragraph at the end of a list or quote that ends the tail,
// without parsing the tail again. itemStart: where the list's last item begins.
void IncrementalRenderer::prepareToExtend(
    const SourceSpan &span, qsizetype spanStart, qsizetype lastLineStart, qsizetype itemStart)
{
    m_lastBlock.setListMarker(std::nullopt);
    if (span.kind != SourceSpan::Kind::List && span.kind != SourceSpan::Kind::Quote) {
        return;
    }
    if (span.kind == SourceSpan::Kind::List && itemStart >= 0 && itemStart < m_text.size()) {
        m_lastBlock.setListMarker(ListMarker::of(m_text.at(itemStart), span.parenDelimiter));
    }
    const auto target
        = span.kind == SourceSpan::Kind::List ? OpenParagraph::Target::LastItemText : OpenParagraph::Target::BlockText;
    if (auto paragraph = OpenParagraph::openNested(m_text, spanStart, lastLineStart, renderEnd(), target)) {
        m_lastBlock.write(std::move(*paragraph));
    }
}

bool IncrementalRenderer::extendLastBlock()
{
    return m_lastBlock.isOpen() && m_lastBlock.extend(m_text, renderEnd(), m_blocks.last());
}

// When the new text completes the last block, that block and everything before it become
// final without parsing them again; only the text after it is parsed.
bool IncrementalRenderer::finishLastBlock()
{
    if (!m_lastBlock.isOpen()) {
        return false;
    }
    const qsizetype end = renderEnd();
    const LastBlock::Step step = m_lastBlock.finish(m_text, end, m_blocks.last());
    switch (step.kind) {
    case LastBlock::Step::Kind::Reparse:
        return false;
    case LastBlock::Step::Kind::Shown:
        return true;
    case LastBlock::Step::Kind::CodeClosed:
        commitUpTo(step.next);
        m_stableCount = m_blocks.size();
        break;
    case LastBlock::Step::Kind::Ended:
        commitUpTo(step.next);
        if (startAfterFinished(end)) {
            return true;
        }
        break;
    case LastBlock::Step::Kind::NewItem:
        m_openBlock = OpenBlock::list(
            m_blocks.last(), m_blocks.last().items.size(), step.number, m_lastBlock.listMarker()->parenDelimiter());
        m_tailStart = step.next;
        m_stableCount = m_blocks.size();
        if (startPlainItem(end)) {
            return true;
        }
        break;
    }
    renderTail();
    return true;
}

// Once every block so far is final and the tail begins a new one: a paragraph starts
// without a parse of anything. False when the tail needs parsing.
bool IncrementalRenderer::startAfterFinished(qsizetype end)
{
    m_stableCount = m_blocks.size();
    QString text;
    if (auto next
        = OpenParagraph::openLine(m_text, m_tailStart, m_tailStart, end, OpenParagraph::Target::BlockText, text)) {
        MarkdownBlock started;
        started.text = text;
        m_blocks.append(started);
        m_lastBlock.write(std::move(*next));
        return true;
    }
    return false;
}

// While a table grows row by row, the tail holds only its rows: the one being written and
// perhaps some just finished. They are rendered on their own, and the finished ones join
// the final part of the table.
bool IncrementalRenderer::extendTable()
{
    if (!m_openBlock || !m_openBlock->isTable()) {
        return false;
    }
    const qsizetype end = renderEnd();
    const std::optional<TableRows::TailLines> tail
        = TableRows::splitTail(QStringView(m_text).sliced(m_tailStart, end - m_tailStart));
    if (!tail) {
        return false;
    }
    const std::optional<QList<QStringList>> rows
        = TableRows::render(tail->lines, m_openBlock->block().tableHeader.size());
    if (!rows) {
        return false;
    }
    MarkdownBlock table = m_openBlock->block();
    table.tableRows.append(*rows);
    if (tail->rowBegun && tail->lines.size() > 1) {
        if (std::optional<OpenBlock> grown = m_openBlock->withTable(table)) {
            m_openBlock = std::move(grown);
            m_tailStart += tail->lastStart;
        }
    }
    m_blocks.resize(m_stableCount);
    m_blocks.last() = std::move(table);
    return true;
}

// Shows a new item of the open list whose first line so far is paragraph text without
// parsing the list: the item is one paragraph of that text, numbered on from the items
// before it.
bool IncrementalRenderer::startPlainItem(qsizetype end)
{
    const qsizetype content = ListMarker::contentStart(QStringView(m_text).sliced(m_tailStart, end - m_tailStart));
    if (content < 0) {
        return false;
    }
    QString rich;
    auto item = OpenParagraph::openLine(
        m_text, m_tailStart, m_tailStart + content, end, OpenParagraph::Target::LastItemText, rich);
    if (!item) {
        return false;
    }
    MarkdownListItem entry;
    entry.text = rich;
    entry.marker = m_openBlock->nextMarker();
    m_blocks.last().items.append(entry);
    m_lastBlock.write(std::move(*item));
    return true;
}

} // namespace zentrik
