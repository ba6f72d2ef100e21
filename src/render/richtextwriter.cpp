#include "render/richtextwriter.h"

#include <cmark-gfm-core-extensions.h>

#include <QStringDecoder>

#include <cstring>
#include <vector>

namespace zentrik {

namespace {

QString escaped(const QString &text)
{
    return text.toHtmlEscaped();
}

// QString::fromUtf8() drops a byte order mark at the start of what it converts. cmark hands
// over literals and runs that may begin with one (the first line of a code block, the text
// after a line break), and there it is part of the text: dropping it made a whole render
// differ from the streamed one, which keeps it.
QString fromUtf8KeepingBom(QByteArrayView utf8)
{
    QStringDecoder decoder(
        QStringDecoder::Utf8, QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom);
    return decoder.decode(utf8);
}

// Appends cmark's UTF-8 text HTML-escaped, without going through a temporary QString for
// each node: rendering the inline content is most of the work on every streamed piece.
void appendEscapedUtf8(QString &out, const char *text)
{
    if (text == nullptr) {
        return;
    }
    const char *run = text;
    bool ascii = true;
    for (const char *at = text;; ++at) {
        const auto c = static_cast<unsigned char>(*at);
        if (c == 0 || c == '&' || c == '<' || c == '>' || c == '"') {
            if (at > run) {
                if (ascii) {
                    out.append(QLatin1StringView(run, at - run));
                } else {
                    out.append(fromUtf8KeepingBom(QByteArrayView(run, at - run)));
                }
            }
            switch (c) {
            case 0:
                return;
            case '&':
                out.append(QLatin1StringView("&amp;"));
                break;
            case '<':
                out.append(QLatin1StringView("&lt;"));
                break;
            case '>':
                out.append(QLatin1StringView("&gt;"));
                break;
            default:
                out.append(QLatin1StringView("&quot;"));
                break;
            }
            run = at + 1;
            ascii = true;
        } else if (c >= 0x80) {
            ascii = false;
        }
    }
}

QString withLineBreaks(const QString &escapedText)
{
    QString result = escapedText;
    result.replace(QLatin1Char('\n'), QStringLiteral("<br>"));
    return result;
}

QString withoutFinalNewline(QString text)
{
    if (text.endsWith(QLatin1Char('\n'))) {
        text.chop(1);
    }
    return text;
}

} // namespace

QString RichTextWriter::literal(cmark_node *node)
{
    const char *text = cmark_node_get_literal(node);
    return text != nullptr ? fromUtf8KeepingBom(text) : QString();
}

bool RichTextWriter::isType(cmark_node *node, const char *typeString)
{
    return std::strcmp(cmark_node_get_type_string(node), typeString) == 0;
}

bool RichTextWriter::isSafeUrl(const QString &url)
{
    const QString trimmed = url.trimmed();
    for (const char *scheme : { "javascript:", "vbscript:", "file:", "data:" }) {
        if (trimmed.startsWith(QLatin1String(scheme), Qt::CaseInsensitive)) {
            return false;
        }
    }
    return true;
}

void RichTextWriter::appendEscaped(QString &out, QStringView text)
{
    qsizetype run = 0;
    for (qsizetype at = 0; at < text.size(); ++at) {
        const char16_t c = text.at(at).unicode();
        if (c != '&' && c != '<' && c != '>' && c != '"') {
            continue;
        }
        out += text.sliced(run, at - run);
        out += c == '&' ? QLatin1StringView("&amp;")
            : c == '<'  ? QLatin1StringView("&lt;")
            : c == '>'  ? QLatin1StringView("&gt;")
                        : QLatin1StringView("&quot;");
        run = at + 1;
    }
    out += text.sliced(run);
}

QString RichTextWriter::inlines(cmark_node *parent)
{
    QString out;
    appendInlines(out, parent);
    return out;
}

void RichTextWriter::appendInlines(QString &out, cmark_node *parent)
{
    for (cmark_node *node = cmark_node_first_child(parent); node != nullptr; node = cmark_node_next(node)) {
        switch (cmark_node_get_type(node)) {
        case CMARK_NODE_TEXT:
        case CMARK_NODE_HTML_INLINE:
            // Raw HTML in a reply is shown as the text the model wrote, never interpreted.
            appendEscapedUtf8(out, cmark_node_get_literal(node));
            break;
        case CMARK_NODE_SOFTBREAK:
            out += QLatin1Char(' ');
            break;
        case CMARK_NODE_LINEBREAK:
            out += QLatin1StringView("<br>");
            break;
        case CMARK_NODE_CODE:
            out += QLatin1StringView("<code>");
            appendEscapedUtf8(out, cmark_node_get_literal(node));
            out += QLatin1StringView("</code>");
            break;
        case CMARK_NODE_EMPH:
            out += QLatin1StringView("<i>");
            appendInlines(out, node);
            out += QLatin1StringView("</i>");
            break;
        case CMARK_NODE_STRONG:
            out += QLatin1StringView("<b>");
            appendInlines(out, node);
            out += QLatin1StringView("</b>");
            break;
        case CMARK_NODE_LINK:
        case CMARK_NODE_IMAGE: {
            // Images are not fetched: the description links to the picture instead.
            const QString url = QString::fromUtf8(cmark_node_get_url(node));
            QString label = inlines(node);
            if (label.isEmpty()) {
                label = escaped(url);
            }
            if (isSafeUrl(url) && !url.isEmpty()) {
                out += QStringLiteral("<a href=\"") + escaped(url) + QStringLiteral("\">") + label
                    + QStringLiteral("</a>");
            } else {
                out += label;
            }
            break;
        }
        default:
            if (isType(node, "strikethrough")) {
                out += QLatin1StringView("<s>");
                appendInlines(out, node);
                out += QLatin1StringView("</s>");
            } else {
                appendInlines(out, node);
            }
            break;
        }
    }
}

QString RichTextWriter::blocks(std::span<cmark_node *const> nodes)
{
    if (nodes.size() == 1 && cmark_node_get_type(nodes.front()) == CMARK_NODE_PARAGRAPH) {
        return inlines(nodes.front());
    }
    if (nodes.size() == 1 && cmark_node_get_type(nodes.front()) == CMARK_NODE_HTML_BLOCK) {
        return withLineBreaks(escaped(withoutFinalNewline(literal(nodes.front()))));
    }
    QString out;
    for (cmark_node *node : nodes) {
        appendBlock(out, node);
    }
    return out;
}

QString RichTextWriter::children(cmark_node *container)
{
    std::vector<cmark_node *> nodes;
    for (cmark_node *node = cmark_node_first_child(container); node != nullptr; node = cmark_node_next(node)) {
        nodes.push_back(node);
    }
    return blocks(nodes);
}

void RichTextWriter::appendBlock(QString &out, cmark_node *node)
{
    switch (cmark_node_get_type(node)) {
    case CMARK_NODE_PARAGRAPH:
        out += QStringLiteral("<p>") + inlines(node) + QStringLiteral("</p>");
        break;
    case CMARK_NODE_HEADING:
        out += QStringLiteral("<p><b>") + inlines(node) + QStringLiteral("</b></p>");
        break;
    case CMARK_NODE_CODE_BLOCK:
        out += QStringLiteral("<pre>") + escaped(withoutFinalNewline(literal(node))) + QStringLiteral("</pre>");
        break;
    case CMARK_NODE_HTML_BLOCK:
        out += QStringLiteral("<p>") + withLineBreaks(escaped(withoutFinalNewline(literal(node))))
            + QStringLiteral("</p>");
        break;
    case CMARK_NODE_THEMATIC_BREAK:
        out += QStringLiteral("<hr>");
        break;
    case CMARK_NODE_BLOCK_QUOTE:
        out += QStringLiteral("<blockquote>") + children(node) + QStringLiteral("</blockquote>");
        break;
    case CMARK_NODE_LIST: {
        const bool ordered = cmark_node_get_list_type(node) == CMARK_ORDERED_LIST;
        out += ordered ? QStringLiteral("<ol start=\"%1\">").arg(cmark_node_get_list_start(node))
                       : QStringLiteral("<ul>");
        for (cmark_node *item = cmark_node_first_child(node); item != nullptr; item = cmark_node_next(item)) {
            out += QStringLiteral("<li>");
            if (isType(item, "tasklist")) {
                out += cmark_gfm_extensions_get_tasklist_item_checked(item) ? QStringLiteral("\u2611 ")
                                                                            : QStringLiteral("\u2610 ");
            }
            out += children(item) + QStringLiteral("</li>");
        }
        out += ordered ? QStringLiteral("</ol>") : QStringLiteral("</ul>");
        break;
    }
    default:
        if (isType(node, "table")) {
            out += QStringLiteral("<table>");
            for (cmark_node *row = cmark_node_first_child(node); row != nullptr; row = cmark_node_next(row)) {
                const bool header = cmark_gfm_extensions_get_table_row_is_header(row) != 0;
                out += QStringLiteral("<tr>");
                for (cmark_node *cell = cmark_node_first_child(row); cell != nullptr; cell = cmark_node_next(cell)) {
                    out += (header ? QStringLiteral("<th>") : QStringLiteral("<td>")) + inlines(cell)
                        + (header ? QStringLiteral("</th>") : QStringLiteral("</td>"));
                }
                out += QStringLiteral("</tr>");
            }
            out += QStringLiteral("</table>");
        } else {
            out += children(node);
        }
        break;
    }
}

} // namespace zentrik
