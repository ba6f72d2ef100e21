#pragma once

#include "render/markdownblock.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QList>
#include <QString>

namespace zentrik {

// Renders a whole Markdown reply at once: into display blocks, or into HTML.
class MarkdownRenderer
{
public:
    // Where a top-level list item lies, and where its rows begin in the block's items.
    struct ItemSpan
    {
        int startLine = 0;
        int endLine = 0;
        qsizetype firstEntry = 0;
    };

    // Where a top-level block lies in its source, in cmark's 1-based line numbers, with
    // what the streaming renderer needs to know to keep extending it.
    struct SourceSpan
    {
        enum class Kind { Paragraph, Heading, Rule, Quote, Table, FencedCode, List, Other };

        int startLine = 0;
        int endLine = 0;
        Kind kind = Kind::Other;
        int fenceLength = 0;
        int fenceOffset = 0;
        QChar fenceChar;
        qint64 listStart = 0;
        bool parenDelimiter = false;
        QList<ItemSpan> items;
    };

    [[nodiscard]] static QList<MarkdownBlock> render(const QString &markdown);
    [[nodiscard]] static QString toHtml(const QString &markdown);
    // The same from UTF-8 into UTF-8, for replies too large to hold twice in UTF-16.
    [[nodiscard]] static QByteArray toHtml(QByteArrayView utf8);

    // Appends the blocks of a UTF-8 text to blocks and, when spans is given, where each of
    // them lies.
    // A text beyond what one parse may take (see renderbudget.h) is rendered in parts, and
    // a part still too large becomes paragraphs of plain text.
    static void renderInto(QByteArrayView utf8, QList<MarkdownBlock> &blocks, QList<SourceSpan> *spans = nullptr);

private:
    static void renderWhole(QByteArrayView utf8, QList<MarkdownBlock> &blocks, QList<SourceSpan> *spans);
};

} // namespace zentrik
