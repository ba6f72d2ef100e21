#pragma once

#include <QString>
#include <QStringView>

#include <cmark-gfm.h>

#include <span>

namespace zentrik {

// Turns cmark-gfm nodes into the rich text a QML Text shows: inline markup as <b>, <i>,
// <s>, <code> and <a href>; block content nested in a quote or a list item with the few
// block tags Qt's rich text knows. Everything the reply says literally is escaped.
class RichTextWriter
{
public:
    // The inline children of a paragraph, heading or table cell.
    [[nodiscard]] static QString inlines(cmark_node *parent);
    // A run of sibling blocks: a lone paragraph (or raw HTML block) stays bare text, anything more is
    // laid out with <p>, <pre>, <ul>/<ol>, <blockquote>, <table> and <hr>.
    [[nodiscard]] static QString blocks(std::span<cmark_node *const> nodes);
    [[nodiscard]] static QString children(cmark_node *container);

    [[nodiscard]] static QString literal(cmark_node *node);
    [[nodiscard]] static bool isType(cmark_node *node, const char *typeString);
    // False for javascript:, vbscript:, file: and data: addresses, which a click must never open.
    [[nodiscard]] static bool isSafeUrl(const QString &url);
    // Appends the text with "&", "<", ">" and '"' written as entities; runs without any go
    // in whole.
    static void appendEscaped(QString &out, QStringView text);

private:
    static void appendInlines(QString &out, cmark_node *parent);
    static void appendBlock(QString &out, cmark_node *node);
};

} // namespace zentrik
