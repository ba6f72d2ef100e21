#include "render/cmarkdocument.h"
#include "render/markdownrenderer.h"
#include "render/simpleinlines.h"

#include "support/testregistry.h"

#include <QRandomGenerator>
#include <QTest>

#include <cstring>

using namespace zentrik;

namespace {

// What cmark makes of the line as a reply of its own: the rich text of its one paragraph,
// and whether a literal delimiter, backtick or bracket is left in its text.
struct Parsed
{
    QString rich;
    bool clean = true;
    bool paragraph = false;
};

Parsed parse(const QString &line)
{
    Parsed parsed;
    const QList<MarkdownBlock> blocks = MarkdownRenderer::render(line);
    parsed.paragraph = blocks.size() == 1 && blocks.first().type == MarkdownBlock::Type::Paragraph;
    if (parsed.paragraph) {
        parsed.rich = blocks.first().text;
    }
    const CmarkDocument document(line.toUtf8(), CmarkDocument::Extensions::Inline);
    cmark_iter *iter = cmark_iter_new(document.root());
    while (cmark_iter_next(iter) != CMARK_EVENT_DONE) {
        cmark_node *node = cmark_iter_get_node(iter);
        if (cmark_node_get_type(node) == CMARK_NODE_TEXT
            && std::strpbrk(cmark_node_get_literal(node), "*_~`[]<") != nullptr) {
            parsed.clean = false;
        }
    }
    cmark_iter_free(iter);
    return parsed;
}

// Null when the shortcut declined or agrees with cmark, else what differs.
QString disagreement(const QString &line)
{
    QString rich;
    bool clean = false;
    if (!SimpleInlines::render(line, rich, clean)) {
        return {};
    }
    const Parsed parsed = parse(line);
    if (!parsed.paragraph || rich != parsed.rich || clean != parsed.clean) {
        return QStringLiteral("for \"%1\": got \"%2\" (clean %3), cmark \"%4\" (clean %5, paragraph %6)")
            .arg(line, rich)
            .arg(clean)
            .arg(parsed.rich)
            .arg(parsed.clean)
            .arg(parsed.paragraph);
    }
    return {};
}

} // namespace

class SimpleInlinesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void agreesWithCmark_data()
    {
        QTest::addColumn<QString>("line");
        // False where the line must be left to cmark.
        QTest::addColumn<bool>("rendered");

        QTest::newRow("plain") << "Plain words, numbers 12 and more." << true;
        QTest::newRow("code span") << "a `code()` span" << true;
        QTest::newRow("code escapes its content") << "x `<b>&amp;\"*_` y" << true;
        QTest::newRow("backticks of another length inside") << "`a``b` c" << true;
        QTest::newRow("unclosed code span") << "an `unclosed code" << true;
        QTest::newRow("longest run that opens")
            << "a " + QString(80, QLatin1Char('`')) + "x" + QString(80, QLatin1Char('`')) << true;
        QTest::newRow("emphasis kinds") << "**bold** and *em* and ~~gone~~ here" << true;
        QTest::newRow("closer after punctuation") << "**Note:**" << true;
        QTest::newRow("inside a word") << "x**y**z and a*b*c" << true;
        QTest::newRow("closer that could open") << "*a*b*c*" << true;
        QTest::newRow("emoji") << "emoji **\U0001F600** and *\U0001F600*\U0001F600" << true;
        QTest::newRow("unclosed strong") << "word **bo" << true;
        QTest::newRow("run between blanks") << "a * b *c*" << true;
        QTest::newRow("runs that cannot open") << "x ** a** b" << true;
        QTest::newRow("run before a blank at the start") << "** a" << false;
        QTest::newRow("link") << "see [link](https://example.com/docs/x?a=1#b) after" << true;
        QTest::newRow("unsafe link") << "[x](javascript:alert) y" << true;

        QTest::newRow("empty") << "" << false;
        QTest::newRow("digit may start an item") << "1. item" << false;
        QTest::newRow("three stars") << "***a***" << false;
        QTest::newRow("underscore") << "snake_case" << false;
        QTest::newRow("entity") << "AT&T" << false;
        QTest::newRow("raw html") << "a <b>x</b>" << false;
        QTest::newRow("www address") << "see www.example.com" << false;
        QTest::newRow("address in emphasis") << "see *http://x.org*" << false;
        QTest::newRow("lengths differ") << "**a* b" << false;
        QTest::newRow("nested") << "*a **b** c*" << false;
        QTest::newRow("closer after a blank") << "**a ** b" << false;
        QTest::newRow("closer before a letter after punctuation") << "*a.*b" << false;
        QTest::newRow("unclosed then closed") << "``a `b` c" << false;
        // cmark leaves the last span literal: the search for the second span's closer passes a
        // run of three and makes cmark forget the later one.
        QTest::newRow("unclosed then a run passed over") << "x `` `a```b` ```x```" << false;
        QTest::newRow("run too long to open")
            << "a " + QString(81, QLatin1Char('`')) + "x" + QString(81, QLatin1Char('`')) << false;
        QTest::newRow("control character in code") << "a `b\u0001` c" << false;
        QTest::newRow("single tilde") << "a ~b~ c" << false;
        QTest::newRow("bracket without address") << "a [b] c" << false;
        QTest::newRow("address with a blank") << "a [b](c d) e" << false;
        QTest::newRow("markup in link text") << "a [*b*](c) d" << false;
        QTest::newRow("no-break space beside a run") << "**a**\u00a0b" << false;
        QTest::newRow("punctuation beside a run") << "**a\u00ab**" << false;
        QTest::newRow("null character") << QStringLiteral("a") + QChar(0) + QStringLiteral("b") << false;
        QTest::newRow("lone surrogate") << QStringLiteral("a") + QChar(0xd83d) + QStringLiteral(" b") << false;
    }

    void agreesWithCmark()
    {
        QFETCH(QString, line);
        QFETCH(bool, rendered);
        QString rich;
        bool clean = false;
        QCOMPARE(SimpleInlines::render(line, rich, clean), rendered);
        const QString difference = disagreement(line);
        QVERIFY2(difference.isEmpty(), qPrintable(difference));
    }

    // Lines strung together from the characters that decide how a delimiter reads: whatever
    // the shortcut takes on must come out as cmark has it.
    void randomLinesAgree()
    {
        static const QStringList tokens = { "a", "word", "\u00e9", "\U0001F600", " ", " ", "  ", "*", "**", "~~", "~",
            "`", "``", "[", "]", "(", ")", "[t](u)", "[t](https://x.y/z)", ":", "http", "!", ".", ",", "\"", ">", "_",
            "<", "&", "\\", "w", "ww", "-", "\t", "1" };
        QRandomGenerator random(4242);
        int rendered = 0;
        constexpr int lines = 20000;
        for (int i = 0; i < lines; ++i) {
            QString line = random.bounded(3) == 0 ? QString() : QStringLiteral("x");
            for (int n = 0, count = random.bounded(1, 10); n < count; ++n) {
                line += tokens.at(random.bounded(int(tokens.size())));
            }
            while (line.endsWith(QLatin1Char(' ')) || line.endsWith(QLatin1Char('\t'))) {
                line.chop(1);
            }
            QString rich;
            bool clean = false;
            if (SimpleInlines::render(line, rich, clean)) {
                ++rendered;
            }
            const QString difference = disagreement(line);
            QVERIFY2(difference.isEmpty(), qPrintable(difference));
        }
        // The lines are made so that a good share of them hold only what the shortcut takes on.
        QVERIFY2(rendered > lines / 5, qPrintable(QString::number(rendered)));
    }
};

ZENTRIK_TEST(SimpleInlinesTest)

#include "tst_simpleinlines.moc"
