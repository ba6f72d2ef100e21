#pragma once

#include "render/lastblock.h"
#include "render/markdownblock.h"
#include "render/markdownrenderer.h"
#include "render/openblock.h"
#include "render/plaintextblocks.h"

#include <QList>
#include <QString>
#include <QStringView>

#include <optional>

namespace zentrik {

// Renders a reply while it streams in. Blocks that later text can no longer change are
// kept, and each piece re-parses only the unfinished tail: the block being written (of a
// long list or table, only its last item or row). A code block or paragraph that grows is
// extended without parsing it again, the rows of a table are rendered without the table
// around them, and a block that a piece completes is closed without parsing it again, so the work per piece follows the
// size of the piece, not the length of the reply. After every piece, blocks() equals MarkdownRenderer::render() of the
// text so far (less a trailing half of a surrogate pair, which waits for the rest).
//
// A reply that grows past what one parse may take (renderbudget.h) goes on as plain text:
// the blocks so far stay, and the rest is shown as PlainTextBlocks. (A whole render of such
// a reply parses it in parts instead.)
class IncrementalRenderer
{
public:
    void append(QStringView piece);
    void setText(const QString &text);
    void clear();

    [[nodiscard]] const QString &text() const { return m_text; }
    [[nodiscard]] const QList<MarkdownBlock> &blocks() const { return m_blocks; }
    // Blocks before this index are final: no later piece changes them.
    [[nodiscard]] qsizetype stableBlockCount() const { return m_stableCount - (m_openBlock ? 1 : 0); }
    // Where the re-parsed tail begins in text().
    [[nodiscard]] qsizetype tailStart() const { return m_tailStart; }
    [[nodiscard]] bool isPlain() const { return m_plain.has_value(); }

    static constexpr qsizetype plainBlockLength = PlainTextBlocks::blockLength;

private:
    using SourceSpan = MarkdownRenderer::SourceSpan;

    [[nodiscard]] qsizetype renderEnd() const;
    void noteReferenceDefinitions(qsizetype from);
    void restart();
    void renderTail();
    void parseTail(QStringView tail, QList<MarkdownBlock> &parsed, QList<SourceSpan> &spans) const;
    void cutTail(QStringView tail, const QList<SourceSpan> &spans, qsizetype first, qsizetype openEntries);
    void prepareToExtend(const SourceSpan &span, qsizetype spanStart, qsizetype lastLineStart, qsizetype itemStart);

    bool extendLastBlock();
    bool finishLastBlock();
    bool extendTable();
    bool startPlainItem(qsizetype end);
    bool startAfterFinished(qsizetype end);
    void commitUpTo(qsizetype tailStart);
    void continueAsPlainText();
    void appendPlainText();

    QString m_text;
    QList<MarkdownBlock> m_blocks;
    qsizetype m_stableCount = 0; // an open block counts
    qsizetype m_tailStart = 0;
    std::optional<OpenBlock> m_openBlock;
    LastBlock m_lastBlock;
    // A link reference definition anywhere changes links everywhere, before it too; once
    // the text may hold one, every piece renders the whole text again.
    bool m_wholeText = false;
    // Once the reply is shown as plain text.
    std::optional<PlainTextBlocks> m_plain;
};

} // namespace zentrik
