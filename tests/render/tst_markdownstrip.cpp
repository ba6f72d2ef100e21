#include "render/markdownstrip.h"

#include "support/testregistry.h"

#include <QTest>

using namespace zentrik;

class MarkdownStripTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void strip_data();
    void strip();
    void rulePattern_data();
    void rulePattern();
};

void MarkdownStripTest::strip_data()
{
    QTest::addColumn<QString>("markdown");
    QTest::addColumn<QString>("plain");

    // Markers act at the very start of the whole text only, never per line.
    QTest::newRow("only the first heading marker goes") << "# Title\n## Subtitle\nBody" << "Title\n## Subtitle\nBody";
    QTest::newRow("seven hashes are no heading") << "####### Deep" << "####### Deep";
    QTest::newRow("hash without a space stays") << "#hashtag here" << "#hashtag here";
    QTest::newRow("heading marker followed by a line break") << "#\nText" << "Text";
    QTest::newRow("leading spaces protect the marker") << "  # Title  " << "# Title";
    QTest::newRow("only the first number goes") << "1. one\n2. two" << "one\n2. two";
    QTest::newRow("multi-digit number") << "12. twelve" << "twelve";
    QTest::newRow("parenthesis numbers stay") << "1) first" << "1) first";
    QTest::newRow("only the first hyphen bullet goes") << "- one\n- two" << "one\n- two";
    QTest::newRow("plus bullet") << "+ item" << "item";
    QTest::newRow("asterisk bullets lose their stars earlier") << "* item\n* next" << "item\n next";
    QTest::newRow("only the first quote marker goes") << "> quoted\n> more" << "quoted\n> more";
    QTest::newRow("quote marker is removed after the heading step") << "> # x" << "# x";

    // Emphasis: every run of asterisks and underscores, wherever it is.
    QTest::newRow("bold and italic") << "**bold**, *italic*, __strong__, _em_ and ***both***"
                                     << "bold, italic, strong, em and both";
    QTest::newRow("underscores inside words") << "snake_case_name" << "snakecasename";

    QTest::newRow("link becomes its label") << "Read the [docs](https://example.com/guide) first."
                                            << "Read the docs first.";
    QTest::newRow("link address with parentheses") << "[a](http://x.org/(y)) end" << "a) end";
    QTest::newRow("inline code") << "Run `make install` now" << "Run make install now";

    // The inline-code step takes the innermost back-ticks of a fence first.
    QTest::newRow("one-line fence") << "```code```" << "``code``";
    QTest::newRow("fenced block keeps its contents") << "```js\nlet x = 1;\n```" << "``js\nlet x = 1;\n``";
    QTest::newRow("inline code before a fence") << "Use `a` and ```b```" << "Use a and ``b``";

    QTest::newRow("hyphen rule at the start") << "---\nAfter" << "After";
    QTest::newRow("hyphen rule at the end stays") << "Before\n---" << "Before\n---";
    QTest::newRow("rule then bullet: the bullet is no longer first") << "-----\n- a" << "- a";

    QTest::newRow("white space only") << " \n\t \n" << "";
    QTest::newRow("empty") << "" << "";
    QTest::newRow("a whole reply") << "# Report\n\n**Summary:** see [site](https://a.b).\n\n1. `a`\n2. b"
                                   << "Report\n\nSummary: see site.\n\n1. a\n2. b";
    QTest::newRow("non-ASCII text") << "## Grüße 😀\n*Ünïcödé*" << "Grüße 😀\nÜnïcödé";
}

void MarkdownStripTest::strip()
{
    QFETCH(QString, markdown);
    QFETCH(QString, plain);
    QCOMPARE(stripMarkdown(markdown), plain);
}

void MarkdownStripTest::rulePattern_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("matches");

    QTest::newRow("three hyphens") << "---" << true;
    QTest::newRow("many hyphens") << "----------" << true;
    QTest::newRow("two hyphens") << "--" << false;
    QTest::newRow("hyphens start a longer text") << "--- intro" << true;
    QTest::newRow("hyphens end a longer text") << "intro ---" << false;
    QTest::newRow("spaced hyphens") << "- - -" << false;
    QTest::newRow("three underscores") << "___" << true;
    QTest::newRow("underscores anywhere") << "a ___ b" << true;
    QTest::newRow("two underscores") << "snake__case" << false;
    QTest::newRow("three asterisks") << "***" << true;
    QTest::newRow("asterisks end the text") << "Intro\n***" << true;
    QTest::newRow("asterisks before a final line break") << "***\n" << true;
    QTest::newRow("asterisks start a longer text") << "*** intro" << false;
    QTest::newRow("empty") << "" << false;
}

void MarkdownStripTest::rulePattern()
{
    QFETCH(QString, text);
    QFETCH(bool, matches);
    QCOMPARE(matchesRulePattern(text), matches);
}

ZENTRIK_TEST(MarkdownStripTest)

#include "tst_markdownstrip.moc"
