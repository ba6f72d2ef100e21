#include "reference/referencestrip.h"
#include "render/markdownstrip.h"

#include "support/hostiletext.h"
#include "support/testregistry.h"

#include <QRandomGenerator>
#include <QTest>

using namespace zentrik;

namespace {

// Every step of the chain and the rule test, each in the shape that would make the engine
// retry a long run from every start: brackets and link openings that never close, back-ticks
// and fences without their other half, runs of markers that end just short of matching.
void addHostileStripRows()
{
    test::addHostileColumns();
    test::addHostileRow("open brackets", "", "[", "");
    test::addHostileRow("links without their closing parenthesis", "", "[a](", "");
    test::addHostileRow("labels without an address", "", "[a]", "(");
    test::addHostileRow("one bracket before a long label", "[", "a", "](b");
    test::addHostileRow("closings without openings", "", "](", ")");
    test::addHostileRow("empty labels", "", "[](", "x)");
    test::addHostileRow("back-ticks", "", "`", "");
    test::addHostileRow("unclosed code spans", "", "`a", "");
    test::addHostileRow("unclosed fences", "", "```a", "");
    test::addHostileRow("stars before the last character", "", "*", "x");
    test::addHostileRow("stars before a final line break", "a", "*", "\r\n");
    test::addHostileRow("underscore pairs", "", "__a", "");
    test::addHostileRow("hyphens", "", "-", "x");
    test::addHostileRow("digits without their full stop", "", "1", "x");
    test::addHostileRow("heading markers", "", "#", "");
    test::addHostileRow("quote markers", "", "> ", "");
}

} // namespace

class MarkdownStripTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void strip_data()
    {
        QTest::addColumn<QString>("markdown");
        QTest::addColumn<QString>("plain");
        const auto row = [](const char *name, const QString &markdown, const QString &plain) {
            QTest::newRow(name) << markdown << plain;
        };

        // Markers act at the very start of the whole text only, never per line.
        row("only the first heading marker goes", "# Title\n## Subtitle\nBody", "Title\n## Subtitle\nBody");
        row("hash without a space stays", "#hashtag here", "#hashtag here");
        row("leading spaces protect the marker", "  # Title  ", "# Title");
        row("only the first number goes", "1. one\n2. two", "one\n2. two");
        row("parenthesis numbers stay", "1) first", "1) first");
        row("only the first hyphen bullet goes", "- one\n- two", "one\n- two");
        row("asterisk bullets lose their stars earlier", "* item\n* next", "item\n next");
        row("only the first quote marker goes", "> quoted\n> more", "quoted\n> more");

        // Emphasis: every run of asterisks and underscores, wherever it is.
        row("bold and italic", "**bold**, *italic*, __strong__, _em_ and ***both***",
            "bold, italic, strong, em and both");

        row("link becomes its label", "Read the [docs](https://example.com/guide) first.", "Read the docs first.");
        row("link address with parentheses", "[a](http://x.org/(y)) end", "a) end");
        row("inline code", "Run `make install` now", "Run make install now");

        // The inline-code step takes the innermost back-ticks of a fence first.
        row("fenced block keeps its contents", "```js\nlet x = 1;\n```", "``js\nlet x = 1;\n``");
        row("inline code before a fence", "Use `a` and ```b```", "Use a and ``b``");

        row("hyphen rule at the start", "---\nAfter", "After");
        row("rule then bullet: the bullet is no longer first", "-----\n- a", "- a");

        row("a whole reply", "# Report\n\n**Summary:** see [site](https://a.b).\n\n1. `a`\n2. b",
            "Report\n\nSummary: see site.\n\n1. a\n2. b");
        row("non-ASCII text", "## Grüße 😀\n*Ünïcödé*", "Grüße 😀\nÜnïcödé");
    }

    void strip()
    {
        QFETCH(QString, markdown);
        QFETCH(QString, plain);
        QCOMPARE(stripMarkdown(markdown), plain);
    }

    void rulePattern_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("matches");

        QTest::newRow("three hyphens") << "---" << true;
        QTest::newRow("two hyphens") << "--" << false;
        QTest::newRow("hyphens start a longer text") << "--- intro" << true;
        QTest::newRow("hyphens end a longer text") << "intro ---" << false;
        QTest::newRow("three underscores") << "___" << true;
        QTest::newRow("underscores anywhere") << "a ___ b" << true;
        QTest::newRow("three asterisks") << "***" << true;
        QTest::newRow("asterisks end the text") << "Intro\n***" << true;
        QTest::newRow("asterisks start a longer text") << "*** intro" << false;
    }

    void rulePattern()
    {
        QFETCH(QString, text);
        QFETCH(bool, matches);
        QCOMPARE(matchesRulePattern(text), matches);
    }

    void randomTextsAgreeWithReference_data()
    {
        QTest::addColumn<quint32>("seed");
        QTest::addColumn<QString>("alphabet");

        QTest::newRow("links") << 1U << QStringLiteral("[]()a ");
        QTest::newRow("links and code") << 2U << QStringLiteral("[]()`a\n");
        QTest::newRow("every marker") << 3U << QStringLiteral("[]()`*_#->+1. \n\r");
        QTest::newRow("rules and line ends") << 4U << QStringLiteral("*_-x\n\r\u0085\u2028\u000b");
        QTest::newRow("beyond the BMP") << 5U << (QStringLiteral("[]()`*\U0001F600 ") + QChar(0xd800));
    }

    // Short texts over a few characters reach every branch of the link scanner and the rule test.
    void randomTextsAgreeWithReference()
    {
        QFETCH(quint32, seed);
        QFETCH(QString, alphabet);
        QRandomGenerator random(seed);
        for (int i = 0; i < 4000; ++i) {
            QString text;
            const int length = int(random.bounded(24));
            for (int j = 0; j < length; ++j) {
                text += alphabet.at(random.bounded(int(alphabet.size())));
            }
            QCOMPARE(stripMarkdown(text), reference::stripMarkdown(text));
            QCOMPARE(matchesRulePattern(text), reference::matchesRulePattern(text));
        }
    }

    void hostileTextsAgreeWithReference_data() { addHostileStripRows(); }

    void hostileTextsAgreeWithReference()
    {
        QFETCH(QString, prefix);
        QFETCH(QString, unit);
        QFETCH(QString, suffix);
        const QString text = test::hostileText(prefix, unit, suffix, 3000);
        QCOMPARE(stripMarkdown(text), reference::stripMarkdown(text));
        QCOMPARE(matchesRulePattern(text), reference::matchesRulePattern(text));
    }

    void hostileTextsTakeLinearTime_data() { addHostileStripRows(); }

    // Copy and the message view's divider test run on the interface thread: 60,000 characters
    // of any shape in well under 100 ms, a megabyte in well under two seconds (60,000 open
    // brackets took 21 s when the engine searched for links).
    void hostileTextsTakeLinearTime()
    {
        QFETCH(QString, prefix);
        QFETCH(QString, unit);
        QFETCH(QString, suffix);
        for (const qsizetype size : { qsizetype(60000), qsizetype(1 << 20) }) {
            const QString text = test::hostileText(prefix, unit, suffix, size);
            const qint64 bound = size == 60000 ? 100 : 2000;
            const qint64 ms = test::quickestMs(size == 60000 ? 3 : 1, [&] {
                const QString plain = stripMarkdown(text);
                Q_UNUSED(plain);
                const bool rule = matchesRulePattern(text);
                Q_UNUSED(rule);
            });
            QVERIFY2(ms < bound, qPrintable(QStringLiteral("%1 ms for %2 characters").arg(ms).arg(text.size())));
        }
    }
};

ZENTRIK_TEST(MarkdownStripTest)

#include "tst_markdownstrip.moc"
