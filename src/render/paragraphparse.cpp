#include "render/paragraphparse.h"

#include "render/blockbuilder.h"
#include "render/cmarkdocument.h"
#include "render/linetext.h"
#include "render/richtextwriter.h"
#include "render/simpleinlines.h"

#include <cstring>

namespace zentrik {

namespace {

// Appended where the live part will begin, it marks that place in the rendered text. A
// private-use character is plain text to cmark and, after white space, joins no word.
constexpr char16_t marker = 0xe000;
constexpr const char *markerUtf8 = "\xee\x80\x80";

QByteArray withMarker(QStringView text)
{
    return text.toUtf8() + markerUtf8;
}

// The last paragraph of a block, following the last child through lists, items and quotes.
cmark_node *deepestLastParagraph(cmark_node *node)
{
    while (node != nullptr) {
        switch (cmark_node_get_type(node)) {
        case CMARK_NODE_PARAGRAPH:
            return node;
        case CMARK_NODE_LIST:
        case CMARK_NODE_ITEM:
        case CMARK_NODE_BLOCK_QUOTE:
            node = cmark_node_last_child(node);
            break;
        default:
            return nullptr;
        }
    }
    return nullptr;
}

// True when nothing in the paragraph is left waiting for a partner: every emphasis,
// strikethrough, code span, bracket and angle bracket has closed, so nothing that follows
// can change how the paragraph so far reads.
bool isClean(cmark_node *paragraph)
{
    cmark_iter *iter = cmark_iter_new(paragraph);
    bool clean = true;
    while (clean && cmark_iter_next(iter) != CMARK_EVENT_DONE) {
        cmark_node *node = cmark_iter_get_node(iter);
        if (cmark_node_get_type(node) == CMARK_NODE_TEXT) {
            clean = std::strpbrk(cmark_node_get_literal(node), "*_~`[]<") == nullptr;
        }
    }
    cmark_iter_free(iter);
    return clean;
}

// True when the paragraph ends with the marker and is clean before it.
bool endsCleanWithMarker(cmark_node *paragraph)
{
    cmark_node *last = cmark_node_last_child(paragraph);
    const char *lastText
        = last != nullptr && cmark_node_get_type(last) == CMARK_NODE_TEXT ? cmark_node_get_literal(last) : nullptr;
    const size_t markerLength = std::strlen(markerUtf8);
    if (lastText == nullptr || std::strlen(lastText) < markerLength
        || std::strcmp(lastText + std::strlen(lastText) - markerLength, markerUtf8) != 0) {
        return false;
    }
    return isClean(paragraph);
}

cmark_node *soleNode(const CmarkDocument &document)
{
    cmark_node *first = cmark_node_first_child(document.root());
    return first != nullptr && cmark_node_next(first) == nullptr ? first : nullptr;
}

} // namespace

bool ParagraphParse::renderAlone(
    QStringView text, qsizetype start, qsizetype content, qsizetype end, QString &rich, bool &clean)
{
    if (SimpleInlines::render(text.sliced(start, content - start), rich, clean)) {
        return true;
    }
    const CmarkDocument alone(text.sliced(start, end - start).toUtf8(), CmarkDocument::Extensions::Inline);
    cmark_node *paragraph = soleNode(alone);
    if (paragraph == nullptr || cmark_node_get_type(paragraph) != CMARK_NODE_PARAGRAPH) {
        return false;
    }
    rich = RichTextWriter::inlines(paragraph);
    clean = isClean(paragraph);
    return true;
}

std::optional<ParagraphParse::Split> ParagraphParse::splitBlock(
    QStringView text, qsizetype from, qsizetype point, OpenParagraph::Target target)
{
    const CmarkDocument prefix(withMarker(text.sliced(from, point - from)));
    cmark_node *last = cmark_node_last_child(prefix.root());
    cmark_node *paragraph = deepestLastParagraph(last);
    if (paragraph == nullptr || !endsCleanWithMarker(paragraph)) {
        return std::nullopt;
    }
    const MarkdownBlock block = BlockBuilder::build(last);
    if (target == OpenParagraph::Target::LastItemText && block.items.isEmpty()) {
        return std::nullopt;
    }
    const QString &rich = target == OpenParagraph::Target::BlockText ? block.text : block.items.last().text;
    const qsizetype at = rich.indexOf(QChar(marker));
    if (at < 0 || rich.indexOf(QChar(marker), at + 1) >= 0) {
        return std::nullopt;
    }
    return Split { rich.left(at), rich.sliced(at + 1) };
}

bool ParagraphParse::frozenText(QStringView text, qsizetype from, qsizetype point, QString &frozen)
{
    qsizetype content = point;
    while (content > from && LineText::isSpaceOrTab(text.at(content - 1))) {
        --content;
    }
    bool clean = false;
    if (SimpleInlines::render(text.sliced(from, content - from), frozen, clean)) {
        frozen += text.sliced(content, point - content);
        return clean;
    }
    const CmarkDocument prefix(withMarker(text.sliced(from, point - from)), CmarkDocument::Extensions::Inline);
    cmark_node *paragraph = soleNode(prefix);
    if (paragraph == nullptr || cmark_node_get_type(paragraph) != CMARK_NODE_PARAGRAPH
        || !endsCleanWithMarker(paragraph)) {
        return false;
    }
    frozen = RichTextWriter::inlines(paragraph);
    frozen.chop(1);
    return true;
}

} // namespace zentrik
