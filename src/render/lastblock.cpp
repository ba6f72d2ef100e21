#include "render/lastblock.h"

#include "render/linetext.h"

namespace zentrik {

namespace {

using Step = LastBlock::Step;

// The number after the list's last top-level numbered item; 0 for a bulleted list.
qint64 numberAfter(const MarkdownBlock &list)
{
    for (qsizetype i = list.items.size() - 1; i >= 0; --i) {
        const MarkdownListItem &item = list.items.at(i);
        if (item.depth == 0 && !item.marker.isEmpty()) {
            return item.marker.chopped(1).toLongLong() + 1;
        }
    }
    return 0;
}

} // namespace

void LastBlock::reset()
{
    m_block = std::monostate();
    m_listMarker.reset();
}

bool LastBlock::extend(QStringView text, qsizetype end, MarkdownBlock &block)
{
    if (auto *code = std::get_if<OpenCodeBlock>(&m_block)) {
        return code->extend(text, end, block.text);
    }
    if (auto *paragraph = std::get_if<OpenParagraph>(&m_block)) {
        return paragraph->extend(text, end,
            paragraph->target() == OpenParagraph::Target::LastItemText ? block.items.last().text : block.text);
    }
    return false;
}

Step LastBlock::finish(QStringView text, qsizetype end, MarkdownBlock &block)
{
    if (auto *code = std::get_if<OpenCodeBlock>(&m_block)) {
        const std::optional<OpenCodeBlock::Closed> closed = code->close(text, end);
        if (!closed) {
            close();
            return {};
        }
        block.text = closed->code;
        if (closed->next < 0) {
            return { Step::Kind::Shown };
        }
        close();
        return { Step::Kind::CodeClosed, closed->next };
    }
    if (auto *paragraph = std::get_if<OpenParagraph>(&m_block)) {
        const Step step = finishParagraph(*paragraph, text, end, block);
        if (step.kind != Step::Kind::Shown) {
            close();
        }
        return step;
    }
    return {};
}

Step LastBlock::finishParagraph(OpenParagraph &paragraph, QStringView text, qsizetype end, MarkdownBlock &block)
{
    const OpenParagraph::Target target = paragraph.target();
    QString &rich = target == OpenParagraph::Target::BlockText ? block.text : block.items.last().text;
    // Failing here leaves the tail to be parsed again, which rewrites the paragraph's text.
    const std::optional<qsizetype> next = paragraph.endLine(text, end, rich);
    if (!next) {
        return {};
    }
    qsizetype at = *next;
    while (at < end && LineText::isSpaceOrTab(text.at(at))) {
        ++at;
    }
    // Until the next line shows more than white space, the paragraph ends with its line.
    if (at >= end) {
        return { Step::Kind::Shown };
    }
    const bool blankLine = text.at(at) == QLatin1Char('\n') || text.at(at) == QLatin1Char('\r');
    const bool halfBreak = text.at(at) == QLatin1Char('\r') && at + 1 >= end; // may be the first half of "\r\n"
    const qsizetype afterBlank = text.sliced(at).startsWith(QLatin1String("\r\n")) ? at + 2 : at + 1;
    if (target == OpenParagraph::Target::LastItemText && blankLine && (afterBlank >= end || halfBreak)) {
        // After a blank line, the next line decides whether the list goes on.
        return { Step::Kind::Shown };
    }
    if (target == OpenParagraph::Target::BlockText) {
        if (halfBreak || !blankLine) {
            return {};
        }
        return { Step::Kind::Ended, afterBlank };
    }
    if (blankLine) {
        // A line at the margin after a blank line ends the list, unless it starts an item.
        const QChar first = text.at(afterBlank);
        if (LineText::isSpaceOrTab(first) || first == QLatin1Char('\n') || first == QLatin1Char('\r')
            || ListMarker::of(first, false)) {
            return {};
        }
        return { Step::Kind::Ended, afterBlank };
    }
    if (!m_listMarker || !m_listMarker->startsItem(text.sliced(*next, end - *next))) {
        return {};
    }
    return { Step::Kind::NewItem, *next, numberAfter(block) };
}

} // namespace zentrik
