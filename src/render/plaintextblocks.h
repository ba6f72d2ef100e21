#pragma once

#include "render/markdownblock.h"

#include <QList>
#include <QString>

namespace zentrik {

// The rest of a streamed reply that grew past what one parse may take (renderbudget.h),
// shown as plain text: escaped, with its line breaks, in paragraphs of at most blockLength
// characters, so that neither memory nor the work per piece grows with the reply.
class PlainTextBlocks
{
public:
    static constexpr qsizetype blockLength = qsizetype(64) * 1024;

    // The plain text begins at `from` in the reply, in a block of its own.
    explicit PlainTextBlocks(qsizetype from)
        : m_done(from)
    { }

    // Shows the text from done() to end: it fills the last of the blocks, then new ones.
    void append(QStringView text, qsizetype end, QList<MarkdownBlock> &blocks);
    // How far the text is shown.
    [[nodiscard]] qsizetype done() const { return m_done; }

private:
    qsizetype m_done;
    qsizetype m_blockFill = blockLength; // the first text opens a block
};

} // namespace zentrik
