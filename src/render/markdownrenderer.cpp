#include "render/markdownrenderer.h"

#include "render/blockbuilder.h"
#include "render/cmarkdocument.h"
#include "render/richtextwriter.h"

namespace zentrik {

namespace {

MarkdownRenderer::SourceSpan spanOf(cmark_node *node, const QList<qsizetype> &itemEntries)
{
    MarkdownRenderer::SourceSpan span;
    span.startLine = cmark_node_get_start_line(node);
    span.endLine = cmark_node_get_end_line(node);
    switch (cmark_node_get_type(node)) {
    case CMARK_NODE_PARAGRAPH:
        span.kind = MarkdownRenderer::SourceSpan::Kind::Paragraph;
        break;
    case CMARK_NODE_HEADING:
        span.kind = MarkdownRenderer::SourceSpan::Kind::Heading;
        break;
    case CMARK_NODE_THEMATIC_BREAK:
        span.kind = MarkdownRenderer::SourceSpan::Kind::Rule;
        break;
    case CMARK_NODE_BLOCK_QUOTE:
        span.kind = MarkdownRenderer::SourceSpan::Kind::Quote;
        break;
    case CMARK_NODE_CODE_BLOCK: {
        int length = 0;
        int offset = 0;
        char character = 0;
        if (cmark_node_get_fenced(node, &length, &offset, &character) != 0) {
            span.kind = MarkdownRenderer::SourceSpan::Kind::FencedCode;
            span.fenceLength = length;
            span.fenceOffset = offset;
            span.fenceChar = QLatin1Char(character);
        }
        break;
    }
    case CMARK_NODE_LIST: {
        span.kind = MarkdownRenderer::SourceSpan::Kind::List;
        span.listStart = cmark_node_get_list_start(node);
        span.parenDelimiter = cmark_node_get_list_delim(node) == CMARK_PAREN_DELIM;
        qsizetype index = 0;
        for (cmark_node *item = cmark_node_first_child(node); item != nullptr; item = cmark_node_next(item)) {
            span.items.append({cmark_node_get_start_line(item), cmark_node_get_end_line(item),
                               itemEntries.value(index++)});
        }
        break;
    }
    default:
        if (RichTextWriter::isType(node, "table")) {
            span.kind = MarkdownRenderer::SourceSpan::Kind::Table;
        }
        break;
    }
    return span;
}

} // namespace

QList<MarkdownBlock> MarkdownRenderer::render(const QString &markdown)
{
    QList<MarkdownBlock> blocks;
    renderInto(markdown.toUtf8(), blocks);
    return blocks;
}

QString MarkdownRenderer::toHtml(const QString &markdown)
{
    const QByteArray utf8 = markdown.toUtf8();
    return CmarkDocument(utf8).toHtml();
}

void MarkdownRenderer::renderInto(QByteArrayView utf8, QList<MarkdownBlock> &blocks, QList<SourceSpan> *spans)
{
    const CmarkDocument document(utf8);
    QList<qsizetype> itemEntries;
    for (cmark_node *node = cmark_node_first_child(document.root()); node != nullptr; node = cmark_node_next(node)) {
        itemEntries.clear();
        blocks.append(BlockBuilder::build(node, spans != nullptr ? &itemEntries : nullptr));
        if (spans != nullptr) {
            spans->append(spanOf(node, itemEntries));
        }
    }
}

} // namespace zentrik
