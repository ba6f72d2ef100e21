#include "render/markdownrenderer.h"

#include "render/blockbuilder.h"
#include "render/cmarkdocument.h"
#include "render/renderbudget.h"
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
            span.items.append(
                { cmark_node_get_start_line(item), cmark_node_get_end_line(item), itemEntries.value(index++) });
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

// The number of lines a text ends, as cmark counts them: "\n", "\r\n" and a lone "\r".
int lineEndsIn(QByteArrayView text)
{
    int count = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') {
            ++i;
        }
        count += (text[i] == '\r' || text[i] == '\n') ? 1 : 0;
    }
    return count;
}

QByteArrayView withoutTrailingBlankLines(QByteArrayView text)
{
    while (
        !text.isEmpty() && (text.back() == '\n' || text.back() == '\r' || text.back() == ' ' || text.back() == '\t')) {
        text.chop(1);
    }
    return text;
}

// Where to end a piece of plain text of at most `limit` bytes: after the last line break or
// blank, else before a character that starts in UTF-8.
qsizetype plainCut(QByteArrayView text, qsizetype limit)
{
    if (text.size() <= limit) {
        return text.size();
    }
    for (qsizetype at = limit; at > limit / 2; --at) {
        if (text[at - 1] == '\n' || text[at - 1] == ' ') {
            return at;
        }
    }
    qsizetype at = limit;
    while (at > 1 && (static_cast<unsigned char>(text[at]) & 0xc0) == 0x80) {
        --at;
    }
    return at;
}

void appendEscapedUtf8(QByteArray &out, QByteArrayView text)
{
    qsizetype run = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char *entity = nullptr;
        switch (text[i]) {
        case '&':
            entity = "&amp;";
            break;
        case '<':
            entity = "&lt;";
            break;
        case '>':
            entity = "&gt;";
            break;
        case '"':
            entity = "&quot;";
            break;
        default:
            continue;
        }
        out.append(text.sliced(run, i - run));
        out.append(entity);
        run = i + 1;
    }
    out.append(text.sliced(run));
}

// A part too large to parse, shown as it is: paragraphs of escaped text with its line
// breaks, each of a size a text view lays out at once.
void appendPlainBlocks(
    QByteArrayView part, int firstLine, QList<MarkdownBlock> &blocks, QList<MarkdownRenderer::SourceSpan> *spans)
{
    constexpr qsizetype blockBytes = 64 << 10;
    const int lastLine = firstLine + lineEndsIn(withoutTrailingBlankLines(part));
    QByteArrayView rest = withoutTrailingBlankLines(part);
    while (!rest.isEmpty()) {
        const qsizetype cut = plainCut(rest, blockBytes);
        QByteArray escaped;
        appendEscapedUtf8(escaped, rest.first(cut));
        MarkdownBlock block;
        block.text = QString::fromUtf8(escaped).replace(QLatin1Char('\n'), QStringLiteral("<br>"));
        blocks.append(std::move(block));
        if (spans != nullptr) {
            MarkdownRenderer::SourceSpan span;
            span.startLine = firstLine;
            span.endLine = lastLine;
            spans->append(span);
        }
        rest = rest.sliced(cut);
    }
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
    return QString::fromUtf8(toHtml(QByteArrayView(markdown.toUtf8())));
}

QByteArray MarkdownRenderer::toHtml(QByteArrayView utf8)
{
    if (renderbudget::fitsOneParse(utf8)) {
        return CmarkDocument(utf8).toHtml().toUtf8();
    }
    QByteArray html;
    for (const QByteArrayView part : renderbudget::parts(utf8)) {
        if (renderbudget::fitsOneParse(part)) {
            html.append(CmarkDocument(part).toHtml().toUtf8());
            continue;
        }
        const QByteArrayView text = withoutTrailingBlankLines(part);
        if (!text.isEmpty()) {
            html.append("<p>");
            appendEscapedUtf8(html, text);
            html.append("</p>\n");
        }
    }
    return html;
}

void MarkdownRenderer::renderInto(QByteArrayView utf8, QList<MarkdownBlock> &blocks, QList<SourceSpan> *spans)
{
    if (renderbudget::fitsOneParse(utf8)) {
        renderWhole(utf8, blocks, spans);
        return;
    }
    int firstLine = 1;
    for (const QByteArrayView part : renderbudget::parts(utf8)) {
        if (renderbudget::fitsOneParse(part)) {
            const qsizetype before = spans != nullptr ? spans->size() : 0;
            renderWhole(part, blocks, spans);
            if (spans != nullptr) {
                for (qsizetype i = before; i < spans->size(); ++i) {
                    SourceSpan &span = (*spans)[i];
                    span.startLine += firstLine - 1;
                    span.endLine += firstLine - 1;
                    for (ItemSpan &item : span.items) {
                        item.startLine += firstLine - 1;
                        item.endLine += firstLine - 1;
                    }
                }
            }
        } else {
            appendPlainBlocks(part, firstLine, blocks, spans);
        }
        firstLine += lineEndsIn(part);
    }
}

void MarkdownRenderer::renderWhole(QByteArrayView utf8, QList<MarkdownBlock> &blocks, QList<SourceSpan> *spans)
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
