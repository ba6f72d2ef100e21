#pragma once

#include "render/markdownblock.h"
#include "render/markdownrenderer.h"
#include "render/opencodeblock.h"
#include "render/openparagraph.h"

#include <QList>
#include <QString>
#include <QStringView>

#include <optional>
#include <variant>

namespace zentrik {

// Renders a reply while it streams in. Blocks that later text can no longer change are
// kept, and each piece re-parses only the unfinished tail: the block being written (of a
// long list, only its last item). A code block or paragraph that grows within a line is
// extended without parsing it again, so the work per piece follows the size of the piece,
// not the length of the reply. After every piece, blocks() equals MarkdownRenderer::render()
// of the text so far (less a trailing half of a surrogate pair, which waits for the rest).
class IncrementalRenderer
{
public:
    void append(QStringView piece);
    void setText(const QString &text);
    void clear();

    [[nodiscard]] const QString &text() const { return m_text; }
    [[nodiscard]] const QList<MarkdownBlock> &blocks() const { return m_blocks; }
    // Blocks before this index are final: no later piece changes them.
    [[nodiscard]] qsizetype stableBlockCount() const { return m_stableCount - (m_openList ? 1 : 0); }
    // Where the re-parsed tail begins in text().
    [[nodiscard]] qsizetype tailStart() const { return m_tailStart; }

private:
    // A list whose first items are final while more may follow: its block is the last
    // stable one, and the tail starts at the item being written.
    struct OpenList {
        MarkdownBlock block; // the final items only
        qint64 nextNumber = 0;
        bool parenDelimiter = false;
    };

    [[nodiscard]] qsizetype renderEnd() const;
    void noteReferenceDefinitions(qsizetype from);
    // How the items of the list being written begin: a bullet character, or (null) a number
    // followed by "." or ")".
    struct ListMarker {
        QChar bullet;
        bool parenDelimiter = false;
    };

    bool extendLastBlock();
    bool finishLastBlock();
    [[nodiscard]] bool startsSiblingItem(QStringView text) const;
    bool startPlainItem(qsizetype end);
    void renderTail();
    void prepareToExtend(const MarkdownRenderer::SourceSpan &span, qsizetype tailStart, qsizetype lineStart,
                         qsizetype end, qsizetype itemStart);
    void restart();

    QString m_text;
    QList<MarkdownBlock> m_blocks;
    qsizetype m_stableCount = 0;
    qsizetype m_tailStart = 0;
    std::optional<OpenList> m_openList;
    std::variant<std::monostate, OpenCodeBlock, OpenParagraph> m_lastBlock;
    std::optional<ListMarker> m_listMarker;
    // A link reference definition anywhere changes links everywhere, before it too; once
    // the text may hold one, every piece renders the whole text again.
    bool m_wholeText = false;
};

} // namespace zentrik
