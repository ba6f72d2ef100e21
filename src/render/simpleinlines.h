#pragma once

#include <QString>
#include <QStringView>

namespace zentrik {

// Renders the inline markup of one paragraph line without cmark, when the line holds only
// the markup a model writes all the time: closed code spans, closed `*em*`, `**strong**`
// and `~~struck~~` around plain words, and `[text](address)` links, besides plain text.
// A streamed paragraph re-renders its unsettled part on every piece that holds markup, and
// setting up a parse for those few characters costs more than the piece's share of the
// whole render. Anything this does not fully understand is declined, and the caller parses.
class SimpleInlines
{
public:
    // text: the line, without trailing spaces or tabs, as a paragraph on its own. On
    // success, rich holds what RichTextWriter::inlines() writes for cmark's parse of it,
    // and clean tells whether nothing in it is left waiting for a partner (no literal
    // delimiter, backtick or bracket). False leaves rich undefined.
    [[nodiscard]] static bool render(QStringView text, QString &rich, bool &clean);

private:
    [[nodiscard]] static qsizetype plainEnd(QStringView text, qsizetype from);
    [[nodiscard]] static qsizetype emphasis(QStringView text, qsizetype at, QString &rich, bool &clean);
    [[nodiscard]] static qsizetype codeSpan(QStringView text, qsizetype at, QString &rich, bool &clean);
    [[nodiscard]] static qsizetype link(QStringView text, qsizetype at, QString &rich);
};

} // namespace zentrik
