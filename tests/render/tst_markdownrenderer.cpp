#include "blockdump.h"

#include "render/markdownrenderer.h"

#include "support/testregistry.h"

#include <QTest>

using namespace zentrik;
using zentrik::test::dump;

class MarkdownRendererTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void blocks_data()
    {
        QTest::addColumn<QString>("markdown");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char *name, const QString &markdown, const QString &expected) {
            QTest::newRow(name) << markdown << expected;
        };

        row("inline markup", "Hello **bold** and *it* and ~~gone~~ and `x<y`",
            "paragraph: Hello <b>bold</b> and <i>it</i> and <s>gone</s> and <code>x&lt;y</code>");
        row("soft and hard breaks", "one\ntwo  \nthree", "paragraph: one two<br>three");
        row("link with escaped address", "See [docs](https://example.com/a?b=1&c=2).",
            "paragraph: See <a href=\"https://example.com/a?b=1&amp;c=2\">docs</a>.");
        row("autolinks", "Visit www.example.com or https://x.org/p, mail a@b.co",
            "paragraph: Visit <a href=\"http://www.example.com\">www.example.com</a> or "
            "<a href=\"https://x.org/p\">https://x.org/p</a>, mail <a href=\"mailto:a@b.co\">a@b.co</a>");
        row("script address is not a link", "[click](javascript:alert(1)) [d](DATA:text/html,x)", "paragraph: click d");
        row("raw html is shown, not run", "a <script>alert(1)</script> b",
            "paragraph: a &lt;script&gt;alert(1)&lt;/script&gt; b");
        row("entities and escapes", "&copy; \\*not em\\* &lt;", "paragraph: \u00a9 *not em* &lt;");

        row("headings", "# One\n## Two *x*\n###### Six\nSetext\n---\nBig\n===",
            "heading1: One\nheading2: Two <i>x</i>\nheading6: Six\nheading2: Setext\nheading1: Big");

        row("fenced code keeps its text", "```python title=x\nprint('<b>')\n\n  indented\n```",
            "code[python]: print('<b>')\n\n  indented");
        row("unclosed fence runs to the end", "```js\nlet a;\n\n# not a heading",
            "code[js]: let a;\n\n# not a heading");

        row("nested bullets", "- a\n  - b\n    - c\n- d",
            "bulletList | 0 \u2022 a | 1 \u25e6 b | 2 \u25aa c | 0 \u2022 d");
        row("numbers follow the first item", "1) x\n1) y\n1) z", "orderedList | 0 1) x | 0 2) y | 0 3) z");
        row("ordered inside bullets", "- a\n  1. b\n  2. c", "bulletList | 0 \u2022 a | 1 1. b | 1 2. c");
        row("task list", "- [ ] todo\n- [x] done *now*\n- plain",
            "bulletList | 0 \u2022 [ ] todo | 0 \u2022 [x] done <i>now</i> | 0 \u2022 plain");
        row("item with two paragraphs", "- a\n\n  b\n- c", "bulletList | 0 \u2022 <p>a</p><p>b</p> | 0 \u2022 c");
        row("item continues after its nested list", "- a\n  - b\n\n  c", "bulletList | 0 \u2022 a | 1 \u25e6 b | 0  c");
        row("code inside an item", "1. run:\n   ```sh\n   make\n   ```",
            "orderedList | 0 1. <p>run:</p><pre>make</pre>");

        row("quote", "> quoted **text**\nlazy line", "quote: quoted <b>text</b> lazy line");
        row("quote with a list and code", "> intro\n>\n>     code\n>\n> - x",
            "quote: <p>intro</p><pre>code</pre><ul><li>x</li></ul>");

        row("table with alignments and a short row",
            "| Name | Qty | Price |\n|:-----|:---:|------:|\n| a | 1 | 2 |\n| b |",
            "table: Name|Qty|Price / a|1|2 / b|| align 1,4,2");
        row("table cells with markup, extra cells dropped", "a | b\n--|--\n`c` | **z** | extra",
            "table: a|b / <code>c</code>|<b>z</b> align 1,1");
        row("table takes the last line of a paragraph", "intro\na | b\n-|-\n1 | 2",
            "paragraph: intro\ntable: a|b / 1|2 align 1,1");

        row("raw html block shown as written", "<div>\nhi & bye\n</div>",
            "paragraph: &lt;div&gt;<br>hi &amp; bye<br>&lt;/div&gt;");
        row("reference links", "[a][x] and [b]\n\n[x]: https://x.org\n[b]: /rel \"T\"",
            "paragraph: <a href=\"https://x.org\">a</a> and <a href=\"/rel\">b</a>");
        // The box after the marker decides, not an "[x]" further along the line.
        row("task box read where it stands", "- [ ] read arr[x]\n- [x] done\n- [X] Done [ ] too",
            "bulletList | 0 \u2022 [ ] read arr[x] | 0 \u2022 [x] done | 0 \u2022 [x] Done [ ] too");
        row("task boxes of numbered, nested and CRLF items", "1) [ ] a[x]\r\n   - [ ] b [X]\r\n2) [x] c",
            "orderedList | 0 1) [ ] a[x] | 1 \u25e6 [ ] b [X] | 0 2) [x] c");
        // QString::fromUtf8() would drop each of these byte order marks.
        row("byte order mark opening a code block", QStringLiteral("```\n\uFEFFx\n```"),
            QStringLiteral("code: \uFEFFx"));
        row("byte order mark after a line break", QStringLiteral("a\n\uFEFFb"), QStringLiteral("paragraph: a \uFEFFb"));
        row("byte order mark after an escaped character", QStringLiteral("x&\uFEFFy"),
            QStringLiteral("paragraph: x&amp;\uFEFFy"));
        row("empty", "", "");
    }

    void blocks()
    {
        QFETCH(QString, markdown);
        QFETCH(QString, expected);
        QCOMPARE(dump(MarkdownRenderer::render(markdown)), expected);
    }

    void html_data()
    {
        QTest::addColumn<QString>("markdown");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char *name, const QString &markdown, const QString &expected) {
            QTest::newRow(name) << markdown << expected;
        };

        row("task list", "- [x] done\n- [ ] open",
            "<ul>\n<li><input type=\"checkbox\" checked=\"\" disabled=\"\" /> done</li>\n"
            "<li><input type=\"checkbox\" disabled=\"\" /> open</li>\n</ul>\n");
        row("table", "| a | b |\n|:-|-:|\n| 1 | 2 |",
            "<table>\n<thead>\n<tr>\n<th align=\"left\">a</th>\n<th align=\"right\">b</th>\n</tr>\n"
            "</thead>\n<tbody>\n<tr>\n<td align=\"left\">1</td>\n<td align=\"right\">2</td>\n</tr>\n"
            "</tbody>\n</table>\n");
        row("raw html is left out", "<b>raw</b>", "<p><!-- raw HTML omitted -->raw<!-- raw HTML omitted --></p>\n");
        row("script address dropped", "[x](javascript:alert(1))", "<p><a href=\"\">x</a></p>\n");
    }

    void html()
    {
        QFETCH(QString, markdown);
        QFETCH(QString, expected);
        QCOMPARE(MarkdownRenderer::toHtml(markdown), expected);
    }
};

ZENTRIK_TEST(MarkdownRendererTest)

#include "tst_markdownrenderer.moc"
