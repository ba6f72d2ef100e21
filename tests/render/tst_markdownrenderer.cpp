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
    void blocks_data();
    void blocks();
    void html_data();
    void html();
};

void MarkdownRendererTest::blocks_data()
{
    QTest::addColumn<QString>("markdown");
    QTest::addColumn<QString>("expected");

    QTest::newRow("inline markup")
        << "Hello **bold** and *it* and ~~gone~~ and `x<y`"
        << "paragraph: Hello <b>bold</b> and <i>it</i> and <s>gone</s> and <code>x&lt;y</code>";
    QTest::newRow("nested emphasis") << "***both*** and **a *b* c**"
                                     << "paragraph: <i><b>both</b></i> and <b>a <i>b</i> c</b>";
    QTest::newRow("soft and hard breaks") << "one\ntwo  \nthree"
                                          << "paragraph: one two<br>three";
    QTest::newRow("link with escaped address")
        << "See [docs](https://example.com/a?b=1&c=2)."
        << "paragraph: See <a href=\"https://example.com/a?b=1&amp;c=2\">docs</a>.";
    QTest::newRow("autolinks")
        << "Visit www.example.com or https://x.org/p, mail a@b.co"
        << "paragraph: Visit <a href=\"http://www.example.com\">www.example.com</a> or "
           "<a href=\"https://x.org/p\">https://x.org/p</a>, mail <a href=\"mailto:a@b.co\">a@b.co</a>";
    QTest::newRow("script address is not a link") << "[click](javascript:alert(1)) [d](DATA:text/html,x)"
                                                  << "paragraph: click d";
    QTest::newRow("raw html is shown, not run") << "a <script>alert(1)</script> b"
                                                << "paragraph: a &lt;script&gt;alert(1)&lt;/script&gt; b";
    QTest::newRow("image becomes a link") << "![chart](https://x.org/c.png)"
                                          << "paragraph: <a href=\"https://x.org/c.png\">chart</a>";
    QTest::newRow("entities and escapes") << "&copy; \\*not em\\* &lt;"
                                          << "paragraph: \u00a9 *not em* &lt;";

    QTest::newRow("headings")
        << "# One\n## Two *x*\n###### Six\nSetext\n---\nBig\n==="
        << "heading1: One\nheading2: Two <i>x</i>\nheading6: Six\nheading2: Setext\nheading1: Big";

    QTest::newRow("fenced code keeps its text") << "```python title=x\nprint('<b>')\n\n  indented\n```"
                                                << "code[python]: print('<b>')\n\n  indented";
    QTest::newRow("tilde fence without language") << "~~~\na\n~~~"
                                                  << "code: a";
    QTest::newRow("indented code") << "    x = 1\n    y = 2"
                                   << "code: x = 1\ny = 2";
    QTest::newRow("unclosed fence runs to the end") << "```js\nlet a;\n\n# not a heading"
                                                    << "code[js]: let a;\n\n# not a heading";

    QTest::newRow("nested bullets") << "- a\n  - b\n    - c\n- d"
                                    << "bulletList | 0 \u2022 a | 1 \u25e6 b | 2 \u25aa c | 0 \u2022 d";
    QTest::newRow("ordered list keeps its start") << "3. x\n4. y"
                                                  << "orderedList | 0 3. x | 0 4. y";
    QTest::newRow("numbers follow the first item") << "1) x\n1) y\n1) z"
                                                   << "orderedList | 0 1) x | 0 2) y | 0 3) z";
    QTest::newRow("ordered inside bullets") << "- a\n  1. b\n  2. c"
                                            << "bulletList | 0 \u2022 a | 1 1. b | 1 2. c";
    QTest::newRow("task list") << "- [ ] todo\n- [x] done *now*\n- plain"
                               << "bulletList | 0 \u2022 [ ] todo | 0 \u2022 [x] done <i>now</i> | 0 \u2022 plain";
    QTest::newRow("item with two paragraphs") << "- a\n\n  b\n- c"
                                              << "bulletList | 0 \u2022 <p>a</p><p>b</p> | 0 \u2022 c";
    QTest::newRow("item continues after its nested list") << "- a\n  - b\n\n  c"
                                                          << "bulletList | 0 \u2022 a | 1 \u25e6 b | 0  c";
    QTest::newRow("code inside an item") << "1. run:\n   ```sh\n   make\n   ```"
                                         << "orderedList | 0 1. <p>run:</p><pre>make</pre>";
    QTest::newRow("bullet kinds make separate lists") << "- a\n* b"
                                                      << "bulletList | 0 \u2022 a\nbulletList | 0 \u2022 b";

    QTest::newRow("quote") << "> quoted **text**\nlazy line"
                           << "quote: quoted <b>text</b> lazy line";
    QTest::newRow("quote with a list and code") << "> intro\n>\n>     code\n>\n> - x"
                                                << "quote: <p>intro</p><pre>code</pre><ul><li>x</li></ul>";
    QTest::newRow("nested quote") << "> a\n>> b"
                                  << "quote: <p>a</p><blockquote>b</blockquote>";

    QTest::newRow("table with alignments and a short row")
        << "| Name | Qty | Price |\n|:-----|:---:|------:|\n| a | 1 | 2 |\n| b |"
        << "table: Name|Qty|Price / a|1|2 / b|| align 1,4,2";
    QTest::newRow("table cells with markup, extra cells dropped") << "a | b\n--|--\n`c` | **z** | extra"
                                                                  << "table: a|b / <code>c</code>|<b>z</b> align 1,1";
    QTest::newRow("escaped pipe in a cell") << "| a |\n|---|\n| x \\| y |"
                                            << "table: a / x | y align 1";
    QTest::newRow("table takes the last line of a paragraph") << "intro\na | b\n-|-\n1 | 2"
                                                              << "paragraph: intro\ntable: a|b / 1|2 align 1,1";

    QTest::newRow("rules") << "***\n\n---\n\n___\n\n- - -"
                           << "rule\nrule\nrule\nrule";
    QTest::newRow("raw html block shown as written") << "<div>\nhi & bye\n</div>"
                                                     << "paragraph: &lt;div&gt;<br>hi &amp; bye<br>&lt;/div&gt;";
    QTest::newRow("reference links") << "[a][x] and [b]\n\n[x]: https://x.org\n[b]: /rel \"T\""
                                     << "paragraph: <a href=\"https://x.org\">a</a> and <a href=\"/rel\">b</a>";
    // The box after the marker decides, not an "[x]" further along the line.
    QTest::newRow("task box read where it stands")
        << "- [ ] read arr[x]\n- [x] done\n- [X] Done [ ] too"
        << "bulletList | 0 \u2022 [ ] read arr[x] | 0 \u2022 [x] done | 0 \u2022 [x] Done [ ] too";
    QTest::newRow("task boxes of numbered, nested and CRLF items")
        << "1) [ ] a[x]\r\n   - [ ] b [X]\r\n2) [x] c"
        << "orderedList | 0 1) [ ] a[x] | 1 \u25e6 [ ] b [X] | 0 2) [x] c";
    // QString::fromUtf8() would drop each of these byte order marks.
    QTest::newRow("byte order mark opening a code block")
        << QStringLiteral("```\n\uFEFFx\n```") << QStringLiteral("code: \uFEFFx");
    QTest::newRow("byte order mark after a line break")
        << QStringLiteral("a\n\uFEFFb") << QStringLiteral("paragraph: a \uFEFFb");
    QTest::newRow("byte order mark after an escaped character")
        << QStringLiteral("x&\uFEFFy") << QStringLiteral("paragraph: x&amp;\uFEFFy");
    QTest::newRow("empty") << ""
                           << "";
    QTest::newRow("blank lines only") << "\n \n\t\n"
                                      << "";
}

void MarkdownRendererTest::blocks()
{
    QFETCH(QString, markdown);
    QFETCH(QString, expected);
    QCOMPARE(dump(MarkdownRenderer::render(markdown)), expected);
}

void MarkdownRendererTest::html_data()
{
    QTest::addColumn<QString>("markdown");
    QTest::addColumn<QString>("expected");

    QTest::newRow("emphasis and strikethrough") << "**a** ~~b~~"
                                                << "<p><strong>a</strong> <del>b</del></p>\n";
    QTest::newRow("task list") << "- [x] done\n- [ ] open"
                               << "<ul>\n<li><input type=\"checkbox\" checked=\"\" disabled=\"\" /> done</li>\n"
                                  "<li><input type=\"checkbox\" disabled=\"\" /> open</li>\n</ul>\n";
    QTest::newRow("table") << "| a | b |\n|:-|-:|\n| 1 | 2 |"
                           << "<table>\n<thead>\n<tr>\n<th align=\"left\">a</th>\n<th align=\"right\">b</th>\n</tr>\n"
                              "</thead>\n<tbody>\n<tr>\n<td align=\"left\">1</td>\n<td align=\"right\">2</td>\n</tr>\n"
                              "</tbody>\n</table>\n";
    QTest::newRow("autolink") << "see www.x.org"
                              << "<p>see <a href=\"http://www.x.org\">www.x.org</a></p>\n";
    QTest::newRow("code with language") << "```c\nint x;\n```"
                                        << "<pre><code class=\"language-c\">int x;\n</code></pre>\n";
    QTest::newRow("raw html is left out") << "<b>raw</b>"
                                          << "<p><!-- raw HTML omitted -->raw<!-- raw HTML omitted --></p>\n";
    QTest::newRow("script address dropped") << "[x](javascript:alert(1))"
                                            << "<p><a href=\"\">x</a></p>\n";
    QTest::newRow("non-ASCII") << "# Grüße 😀"
                               << "<h1>Grüße 😀</h1>\n";
}

void MarkdownRendererTest::html()
{
    QFETCH(QString, markdown);
    QFETCH(QString, expected);
    QCOMPARE(MarkdownRenderer::toHtml(markdown), expected);
}

ZENTRIK_TEST(MarkdownRendererTest)

#include "tst_markdownrenderer.moc"
