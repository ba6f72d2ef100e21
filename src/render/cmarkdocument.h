#pragma once

#include <QByteArrayView>
#include <QString>

#include <cmark-gfm.h>

namespace zentrik {

// A Markdown text parsed by cmark-gfm with the table, strikethrough, autolink and tasklist
// extensions. Owns the parser and the node tree; nodes stay valid while it lives.
class CmarkDocument
{
public:
    enum class Extensions {
        All,
        // Only those that act inside a paragraph (strikethrough, autolinks): enough for a
        // single paragraph line, and cheaper to set up.
        Inline,
    };

    explicit CmarkDocument(QByteArrayView utf8, Extensions which = Extensions::All);
    ~CmarkDocument();
    CmarkDocument(const CmarkDocument &) = delete;
    CmarkDocument &operator=(const CmarkDocument &) = delete;

    [[nodiscard]] cmark_node *root() const { return m_root; }
    // The whole document as HTML. Raw HTML in the reply is left out and unsafe link
    // schemes are dropped, so the output can be shown without further cleaning.
    [[nodiscard]] QString toHtml() const;

private:
    cmark_parser *m_parser = nullptr;
    cmark_node *m_root = nullptr;
};

} // namespace zentrik
