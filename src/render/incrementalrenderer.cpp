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
    m_plainDone = -1;
    restart();
}

void IncrementalRenderer::continueAsPlainText()
{
    // The blocks before the tail are final (an open list or table keeps what it holds);
    // everything from the tail on becomes plain text.
    m_blocks.resize(m_stableCount);
    m_plainDone = m_tailStart;
    m_plainBlockFill = plainBlockLength;
    m_openBlock.reset();
    m_lastBlock = std::monostate();
    m_listMarker.reset();
    appendPlainText();
}

void IncrementalRenderer::appendPlainText()
{
    qsizetype end = renderEnd();
    // A carriage return waits for the line feed that may follow it.
    if (end > m_plainDone && m_text.at(end - 1) == QLatin1Char('\r')) {
        --end;
    }
    while (m_plainDone < end) {
        if (m_plainBlockFill >= plainBlockLength) {
            m_blocks.append(MarkdownBlock());
            m_plainBlockFill = 0;
        }
        qsizetype take = qMin(end - m_plainDone, plainBlockLength - m_plainBlockFill);
        // A block never ends between the halves of a surrogate pair.
        if (m_plainDone + take < end && m_text.at(m_plainDone + take - 1).isHighSurrogate()) {
            take = take > 1 ? take - 1 : take + 1;
        }
        QString &out = m_blocks.last().text;
        for (qsizetype i = m_plainDone; i < m_plainDone + take; ++i) {
            const QChar c = m_text.at(i);
            switch (c.unicode()) {
            case u'&':
                out += QLatin1String("&amp;");
                break;
            case u'<':
                out += QLatin1String("&lt;");
                break;
            case u'>':
                out += QLatin1String("&gt;");
                break;
            case u'"':
                out += QLatin1String("&quot;");
                break;
            case u'\n':
                // The line feed of a CR LF pair: the carriage return made the break.
                if (i == 0 || m_text.at(i - 1) != QLatin1Char('\r')) {
                    out += QLatin1String("<br>");
                }
                break;
            case u'\r':
                out += QLatin1String("<br>");
                break;
            default:
                out += c;
                break;
            }
        }
        m_plainDone += take;
        m_plainBlockFill += take;
        m_tailStart = m_plainDone;
        // The last block grows with the next piece; the ones before it are final.
        m_stableCount = m_blocks.size() - 1;
    }
}

void IncrementalRenderer::restart()
{
    m_stableCount = 0;
    m_tailStart = 0;
    m_openBlock.reset();
    m_lastBlock = std::monostate();
    m_listMarker.reset();
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
    m_lastBlock = std::monostate();
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
            m_lastBlock = std::move(*code);
        }
    } else if (lastSpan.kind == SourceSpan::Kind::Paragraph && lastSpan.startLine >= 1
        && lastSpan.endLine == cuts.lineCount()) {
        if (auto paragraph = OpenParagraph::openTopLevel(m_text, spanStart, lastLineStart, renderEnd())) {
            m_lastBlock = std::move(*paragraph);
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
    m_listMarker.reset();
    if (span.kind != SourceSpan::Kind::List && span.kind != SourceSpan::Kind::Quote) {
        return;
    }
    // Items that start at the margin can be told apart from nested ones by their first
    // character alone.
    if (span.kind == SourceSpan::Kind::List && itemStart >= 0 && itemStart < m_text.size()) {
        const QChar first = m_text.at(itemStart);
        if (first == QLatin1Char('-') || first == QLatin1Char('*') || first == QLatin1Char('+')) {
            m_listMarker = ListMarker { first, false };
        } else if (first.isDigit()) {
            m_listMarker = ListMarker { QChar(), span.parenDelimiter };
        }
    }
    const auto target
        = span.kind == SourceSpan::Kind::List ? OpenParagraph::Target::LastItemText : OpenParagraph::Target::BlockText;
    if (auto paragraph = OpenParagraph::openNested(m_text, spanStart, lastLineStart, renderEnd(), target)) {
        m_lastBlock = std::move(*paragraph);
    }
}

bool IncrementalRenderer::extendLastBlock()
{
    const qsizetype end = renderEnd();
    if (auto *code = std::get_if<OpenCodeBlock>(&m_lastBlock)) {
        return code->extend(m_text, end, m_blocks.last().text);
    }
    if (auto *paragraph = std::get_if<OpenParagraph>(&m_lastBlock)) {
        MarkdownBlock &block = m_blocks.last();
        return paragraph->extend(m_text, end,
            paragraph->target() == OpenParagraph::Target::LastItemText ? block.items.last().text : block.text);
    }
    return false;
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
            commitUpTo(closed->next);
            m_stableCount = m_blocks.size();
            renderTail();
        }
        return true;
    }
    if (auto *paragraph = std::get_if<OpenParagraph>(&m_lastBlock)) {
        return finishParagraph(*paragraph);
    }
    return false;
}

bool IncrementalRenderer::finishParagraph(OpenParagraph &paragraph)
{
    const OpenParagraph::Target target = paragraph.target();
    const qsizetype end = renderEnd();
    MarkdownBlock &block = m_blocks.last();
    QString &rich = target == OpenParagraph::Target::BlockText ? block.text : block.items.last().text;
    // Failing here leaves the tail to be parsed again, which rewrites the paragraph's text.
    const std::optional<qsizetype> next = paragraph.endLine(m_text, end, rich);
    if (!next) {
        m_lastBlock = std::monostate();
        return false;
    }
    qsizetype at = *next;
    while (at < end && (m_text.at(at) == QLatin1Char(' ') || m_text.at(at) == QLatin1Char('\t'))) {
        ++at;
    }
    // Until the next line shows more than white space, the paragraph ends with its line.
    if (at >= end) {
        return true;
    }
    const bool blankLine = m_text.at(at) == QLatin1Char('\n') || m_text.at(at) == QLatin1Char('\r');
    const qsizetype afterBlank = QStringView(m_text).sliced(at).startsWith(QLatin1String("\r\n")) ? at + 2 : at + 1;
    if (target == OpenParagraph::Target::LastItemText && blankLine
        && (afterBlank >= end || (m_text.at(at) == QLatin1Char('\r') && at + 1 >= end))) {
        // After a blank line, the next line decides whether the list goes on.
        return true;
    }
    m_lastBlock = std::monostate();
    if (target == OpenParagraph::Target::BlockText) {
        if ((m_text.at(at) == QLatin1Char('\r') && at + 1 >= end) || !blankLine) {
            return false;
        }
        commitUpTo(afterBlank);
        if (startAfterFinished(end)) {
            return true;
        }
    } else if (blankLine) {
        // A line at the margin after a blank line ends the list, unless it starts an item.
        const QChar first = m_text.at(afterBlank);
        if (LineText::isSpaceOrTab(first) || first == QLatin1Char('\n') || first == QLatin1Char('\r') || first.isDigit()
            || first == QLatin1Char('-') || first == QLatin1Char('*') || first == QLatin1Char('+')) {
            return false;
        }
        commitUpTo(afterBlank);
        if (startAfterFinished(end)) {
            return true;
        }
    } else {
        if (!m_listMarker || !startsSiblingItem(QStringView(m_text).sliced(*next, end - *next))) {
            return false;
        }
        qint64 nextNumber = 0;
        for (qsizetype i = block.items.size() - 1; i >= 0; --i) {
            const MarkdownListItem &item = block.items.at(i);
            if (item.depth == 0 && !item.marker.isEmpty()) {
                nextNumber = item.marker.chopped(1).toLongLong() + 1;
                break;
            }
        }
        m_openBlock = OpenBlock::list(block, block.items.size(), nextNumber, m_listMarker->parenDelimiter);
        m_tailStart = *next;
        m_stableCount = m_blocks.size();
        if (startPlainItem(end)) {
            return true;
        }
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
        m_lastBlock = std::move(*next);
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
    QList<QStringView> lines;
    qsizetype lineStart = m_tailStart;
    for (qsizetype at = m_tailStart; at < end; ++at) {
        if (m_text.at(at) == QLatin1Char('\r')) {
            return false;
        }
        if (m_text.at(at) == QLatin1Char('\n')) {
            lines.append(QStringView(m_text).sliced(lineStart, at - lineStart));
            lineStart = at + 1;
        }
    }
    const bool rowBegun = lineStart < end;
    if (rowBegun) {
        lines.append(QStringView(m_text).sliced(lineStart, end - lineStart));
    }
    if (lines.isEmpty()) {
        return false;
    }
    const std::optional<QList<QStringList>> rows = TableRows::render(lines, m_openBlock->block().tableHeader.size());
    if (!rows) {
        return false;
    }
    MarkdownBlock table = m_openBlock->block();
    table.tableRows.append(*rows);
    if (rowBegun && lines.size() > 1) {
        if (std::optional<OpenBlock> grown = m_openBlock->withTable(table)) {
            m_openBlock = std::move(grown);
            m_tailStart = lineStart;
        }
    }
    m_blocks.resize(m_stableCount);
    m_blocks.last() = std::move(table);
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
        && LineText::roleIsFixed(line);
}

// Shows a new item of the open list whose first line so far is paragraph text without
// parsing the list: the item is one paragraph of that text, numbered on from the items
// before it.
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
    auto item = OpenParagraph::openLine(
        m_text, m_tailStart, m_tailStart + at + spaces, end, OpenParagraph::Target::LastItemText, rich);
    if (!item) {
        return false;
    }
    MarkdownListItem entry;
    entry.text = rich;
    entry.marker = m_openBlock->nextMarker();
    m_blocks.last().items.append(entry);
    m_lastBlock = std::move(*item);
    return true;
}

} // namespace zentrik
