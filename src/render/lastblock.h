#pragma once

#include "render/listmarker.h"
#include "render/markdownblock.h"
#include "render/opencodeblock.h"
#include "render/openparagraph.h"

#include <QStringView>

#include <optional>
#include <variant>

namespace zentrik {

// The block at the end of a streamed reply while pieces can be added to it without a parse:
// a fenced code block, or a paragraph at the top level or at the end of a list item or
// quote. It writes each piece into the block, and tells when a piece completes the block, so
// that the block and everything before it become final without being parsed again.
class LastBlock
{
public:
    // What the new text did to the block.
    struct Step
    {
        enum class Kind {
            Reparse, // the tail has to be parsed again
            Shown, // the block holds the text and may go on
            CodeClosed, // a closing fence completed the code block; the rest begins at `next`
            Ended, // a blank line completed the paragraph (or list); the rest begins at `next`
            NewItem, // a new item of the same list begins at `next`, numbered `number`
        };
        Kind kind = Kind::Reparse;
        qsizetype next = -1;
        qint64 number = 0;
    };

    [[nodiscard]] bool isOpen() const { return !std::holds_alternative<std::monostate>(m_block); }
    void write(OpenCodeBlock code) { m_block = code; }
    void write(OpenParagraph paragraph) { m_block = std::move(paragraph); }
    void close() { m_block = std::monostate(); }
    // The markers of the list whose last item the paragraph is in.
    [[nodiscard]] const std::optional<ListMarker> &listMarker() const { return m_listMarker; }
    void setListMarker(std::optional<ListMarker> marker) { m_listMarker = marker; }
    void reset();

    // Writes the text up to end into the block: the renderer's last block. False when the
    // new text may complete the block or needs a parse.
    [[nodiscard]] bool extend(QStringView text, qsizetype end, MarkdownBlock &block);
    // When extend() declined: whether the new text completes the block. A closing fence
    // completes a code block. When the paragraph being written ends its line, a blank line
    // completes a top-level paragraph or a quote, and a new item of the same list, at the
    // margin, completes a list item. Anything but Shown closes the block.
    [[nodiscard]] Step finish(QStringView text, qsizetype end, MarkdownBlock &block);

private:
    [[nodiscard]] Step finishParagraph(OpenParagraph &paragraph, QStringView text, qsizetype end, MarkdownBlock &block);

    std::variant<std::monostate, OpenCodeBlock, OpenParagraph> m_block;
    std::optional<ListMarker> m_listMarker;
};

} // namespace zentrik
