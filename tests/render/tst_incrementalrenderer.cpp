#include "blockdump.h"
#include "samplereplies.h"

#include "render/incrementalrenderer.h"
#include "render/markdownrenderer.h"

#include "support/testregistry.h"

#include <QRandomGenerator>
#include <QTest>

using namespace zentrik;
using zentrik::test::dump;

namespace {

// The text a renderer has seen, less a trailing half of a surrogate pair that is still
// waiting for its other half.
QString renderedPart(QString text)
{
    if (!text.isEmpty() && text.back().isHighSurrogate()) {
        text.chop(1);
    }
    return text;
}

QString shown(QString text)
{
    text.replace(QLatin1Char('\r'), QStringLiteral("\\r"));
    text.replace(QChar(0), QStringLiteral("\\0"));
    text.replace(QLatin1Char('\n'), QStringLiteral("\\n\n"));
    return text;
}

// Feeds the reply cut at the given positions and compares the blocks with a fresh render of
// the text so far after every piece. Returns the first difference, or nothing.
QString firstDifference(const QString &reply, const QList<qsizetype> &cuts)
{
    IncrementalRenderer renderer;
    qsizetype from = 0;
    QList<qsizetype> ends = cuts;
    ends.append(reply.size());
    for (const qsizetype end : ends) {
        if (end <= from) {
            continue;
        }
        renderer.append(QStringView(reply).sliced(from, end - from));
        from = end;
        const QString sofar = renderedPart(reply.left(end));
        const QList<MarkdownBlock> expected = MarkdownRenderer::render(sofar);
        if (renderer.blocks() != expected) {
            // The last few cuts are the ones that matter; the full text and both renderings
            // go to the log, where nothing cuts them short.
            QStringList lastCuts;
            for (qsizetype i = 0; i < cuts.size() && cuts.at(i) <= end; ++i) {
                lastCuts.append(QString::number(cuts.at(i)));
            }
            lastCuts = lastCuts.mid(qMax<qsizetype>(0, lastCuts.size() - 8));
            qInfo().noquote() << "text so far:\n"
                              << shown(sofar) << "\n--- expected:\n"
                              << dump(expected) << "\n--- got:\n"
                              << dump(renderer.blocks());
            return QStringLiteral("blocks differ after %1 of %2 characters in %3 pieces (cuts ending %4)")
                .arg(end)
                .arg(reply.size())
                .arg(cuts.size() + 1)
                .arg(lastCuts.join(QLatin1Char(',')));
        }
    }
    return {};
}

QList<qsizetype> randomCuts(QRandomGenerator &random, qsizetype length)
{
    QList<qsizetype> cuts;
    qsizetype at = 0;
    while (true) {
        // Mostly token-sized pieces, sometimes a whole burst of lines.
        const int kind = random.bounded(10);
        const int size = kind < 5 ? random.bounded(1, 5) : kind < 9 ? random.bounded(5, 40) : random.bounded(40, 300);
        at += size;
        if (at >= length) {
            return cuts;
        }
        cuts.append(at);
    }
}

// Builds a reply from the pieces of Markdown that interact the most: delimiters that open
// and close across words and lines, list markers, fences, table rows, quotes, setext
// underlines, lines that only later show what they are, addresses, entities and escapes.
QString generatedReply(QRandomGenerator &random)
{
    static const QStringList inlines = { "word", "text", "été", "😀", "*em*", "**bold**", "_u_", "snake_case", "`code`",
        "[link](page)", "[site](https://x.org/a_b)", "www.example.com", "a@b.co", "&amp;", "&copy", "\\*", "<b>",
        "<span class=\"x y\">", "~~gone~~", "*open", "close*", "__", "[", "]", "(", ")", "!", "![i](p.png)",
        "<https://a.b>", "12", "1.", "#", "-", "|", ":", "a\tb", "two  spaces", "x]", "(y)", "**", "`", "~" };
    static const QStringList starts = { "", "", "", "", "- ", "* ", "+ ", "1. ", "2) ", "  - ", "    ", "- [ ] ",
        "- [x] ", "> ", "> - ", "# ", "### ", "12", "2024 ", "| ", "\t", ">" };
    static const QStringList wholeLines
        = { "", "", "", "===", "---", "***", "- - -", "```", "```python", "~~~", "| a | b |", "|---|:-:|", "<div>",
              "</div>", "    indented code", "1.", "-", "#", "``", "> ", "[x]: https://x.org" };
    QString reply;
    const int lines = random.bounded(15, 60);
    for (int line = 0; line < lines; ++line) {
        if (random.bounded(4) == 0) {
            const QString &whole = wholeLines.at(random.bounded(int(wholeLines.size())));
            // Reference definitions switch the renderer to whole-text mode; keep them rare.
            if (!whole.startsWith(QLatin1Char('[')) || random.bounded(8) == 0) {
                reply += whole;
            }
        } else {
            reply += starts.at(random.bounded(int(starts.size())));
            for (int i = 0, words = random.bounded(1, 18); i < words; ++i) {
                reply += (i > 0 ? QStringLiteral(" ") : QString()) + inlines.at(random.bounded(int(inlines.size())));
            }
            if (random.bounded(10) == 0) {
                reply += random.bounded(2) == 0 ? QStringLiteral("  ") : QStringLiteral("\\");
            }
        }
        reply += random.bounded(20) == 0 ? QStringLiteral("\r\n") : QStringLiteral("\n");
    }
    return reply;
}

} // namespace

class IncrementalRendererTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void randomPieces_data()
    {
        QTest::addColumn<QString>("reply");
        QTest::addColumn<quint32>("seed");
        quint32 seed = 7001;
        for (const auto &[name, reply] : zentrik::test::sampleReplies()) {
            QTest::newRow(name.constData()) << reply << seed++;
        }
    }

    void randomPieces()
    {
        QFETCH(QString, reply);
        QFETCH(quint32, seed);
        QRandomGenerator random(seed);
        constexpr int chunkings = 150;
        for (int round = 0; round < chunkings; ++round) {
            const QString difference = firstDifference(reply, randomCuts(random, reply.size()));
            QVERIFY2(difference.isEmpty(), qPrintable(difference));
        }
    }

    void everySplitPoint_data()
    {
        QTest::addColumn<QString>("reply");
        for (const auto &[name, reply] : zentrik::test::sampleReplies()) {
            QTest::newRow(name.constData()) << reply;
        }
    }

    void everySplitPoint()
    {
        QFETCH(QString, reply);
        for (qsizetype cut = 1; cut < reply.size(); ++cut) {
            const QString difference = firstDifference(reply, { cut });
            QVERIFY2(difference.isEmpty(), qPrintable(difference));
        }
    }

    void characterByCharacter_data() { everySplitPoint_data(); }

    void characterByCharacter()
    {
        QFETCH(QString, reply);
        QList<qsizetype> cuts;
        for (qsizetype cut = 1; cut < reply.size(); ++cut) {
            cuts.append(cut);
        }
        const QString difference = firstDifference(reply, cuts);
        QVERIFY2(difference.isEmpty(), qPrintable(difference));
    }

    // Replies that run through the shortcuts that skip a parse: table rows rendered on their
    // own, code and paragraphs that grow in place, and the cases where each must give way.
    void shortcutsCharacterByCharacter_data()
    {
        QTest::addColumn<QString>("reply");
        const QString header = QStringLiteral("| Option | Type | Default |\n|:--|:-:|--:|\n");
        QTest::newRow("table rows") << header + "| `a()` | **b** | 12 |\n| 😀 c | d | 3 |\n| e |\n\nAfter.\n";
        QTest::newRow("row turning unusual") << header + "| a | b |\n| c \\| d | e |\n|\n| 1. | - x |\n| f\tg |\n";
        QTest::newRow("table ended by a quote") << header + "| a | b |\n> quote\n";
        QTest::newRow("table ended by a heading") << header + "| a | b |\n# Head\n| c |\n";
        QTest::newRow("table with carriage returns") << "| a | b |\r\n|---|---|\r\n| c | d |\r\n| e | f |\r\n";
        QTest::newRow("fence look-alikes in code") << "```python\nx = 1\n``` not closing\n``\n```py \ny\n```\nText.\n";
        QTest::newRow("paragraph freezing and markup")
            << "Plain words that keep going for a while so that the live part freezes at a word, then **bold "
               "text** and `code` and a [link](https://example.com) and more words & <tags> \"quoted\" until "
               "the end  \nof the line.\n\n- item with *emphasis* that grows\n- second item\n";
        // Markup rendered without a parse while a paragraph or an item grows, and markup that
        // looks alike but must be parsed.
        QTest::newRow("inline shortcuts")
            << "Words with **bold**, *em*, ~~gone~~ and `code()` and [a link](https://example.com/x?a=1) then "
               "x**y**z and a * b *c* and (**p**) and **Note:** and \"q\" > r, **unclosed and `open code and "
               "more words so that the live part freezes.\n\nNext with `a``b` and ``c `d` e`` and *a*b*c* and "
               "caf\u00e9 **\u00fcber** \U0001F600*\U0001F600* end.\n\n- **Lead**: item with `code()` and *em*\n"
               "- [link](https://example.com) first\n- `code` first and **bold\n  continued** on\n";
        // A blank line and a line at the margin end a list without parsing it again; an item,
        // an indented line or another blank line keep it going.
        QTest::newRow("lists ended by what follows")
            << "- a *b*\n- c\n\nAfter the list.\n\n1. one\n2. two\n\n## Heading\n\n- x\n  - nested\n\n"
               "```\ncode\n```\n\n- y\n\n> quote\n\n- z\n\n| a | b |\n|---|---|\n| 1 | 2 |\n\n"
               "- loose\n\n- list\n\n  indented more\n\n\nText.\n\n- bullet\n\n1. numbered\n\n"
               "* star\n\n+ plus\n\n- crlf\r\n\r\nEnd \u00e9.\n\n- tab\n\n\tcode?\n\n- last\n\n<div>\n";
        QTest::newRow("look-alikes of the shortcuts")
            << "Text **a ** b *a **b** c* ~a~ ~~~b~~~ snake_case a\\*b* AT&T <b>x</b> www.example.com and "
               "*https://x.org* a@b.co ![i](p.png) [b](c d) [b] **a\u00ab** `` x ` y `` **a*b ***c*** [*d*](e) "
               "[f](javascript:x) ` g ` *h.*i end\n\n**x** *y* `z` [w](v) ~~u~~\n";
        // An address after white space: "www." followed by blanks and more text is still one.
        QTest::newRow("address before blanks") << QStringLiteral(" www.  \uFFFD");
        QTest::newRow("backtick runs of other lengths")
            << QStringLiteral("\"\"KB\uFFFD`````````````````````````` `````````\uFFFD``````````1. \uFFFD```<`````````"
                              "\uFFFD`````````````````1. \uFFFD```<`````````\uFFFD\uFFFD```");
    }

    void shortcutsCharacterByCharacter()
    {
        QFETCH(QString, reply);
        QList<qsizetype> cuts;
        for (qsizetype cut = 1; cut < reply.size(); ++cut) {
            cuts.append(cut);
        }
        QString difference = firstDifference(reply, cuts);
        QVERIFY2(difference.isEmpty(), qPrintable(difference));
        QRandomGenerator random(91);
        for (int round = 0; round < 40; ++round) {
            difference = firstDifference(reply, randomCuts(random, reply.size()));
            QVERIFY2(difference.isEmpty(), qPrintable(difference));
        }
    }

    void generatedReplies_data()
    {
        QTest::addColumn<quint32>("seed");
        for (quint32 seed = 1; seed <= 12; ++seed) {
            QTest::addRow("seed %u", seed) << seed;
        }
    }

    void generatedReplies()
    {
        QFETCH(quint32, seed);
        QRandomGenerator random(seed);
        for (int reply = 0; reply < 25; ++reply) {
            const QString text = generatedReply(random);
            for (int round = 0; round < 4; ++round) {
                const QString difference = firstDifference(text, randomCuts(random, text.size()));
                QVERIFY2(difference.isEmpty(), qPrintable(difference));
            }
        }
    }

    void workStaysBounded()
    {
        // Finished blocks leave the re-parsed tail, so it never holds much more than the block
        // being written, however long the reply grows.
        QString reply;
        for (int section = 0; section < 60; ++section) {
            reply += QStringLiteral("## Section %1\n\nSome *text* for section %1 with `code`.\n\n"
                                    "- first point\n- second point\n\n```cpp\nint x = %1;\n```\n\n"
                                    "| a | b |\n|---|---|\n| %1 | x |\n\n")
                         .arg(section);
        }
        IncrementalRenderer renderer;
        qsizetype longestTail = 0;
        constexpr qsizetype piece = 7;
        for (qsizetype at = 0; at < reply.size(); at += piece) {
            renderer.append(QStringView(reply).sliced(at, qMin(piece, reply.size() - at)));
            longestTail = qMax(longestTail, renderer.text().size() - renderer.tailStart());
        }
        QCOMPARE(renderer.blocks(), MarkdownRenderer::render(reply));
        QVERIFY2(longestTail < 120, qPrintable(QString::number(longestTail)));
        QVERIFY(renderer.stableBlockCount() >= renderer.blocks().size() - 1);

        // Brackets and colons in code are no reference definitions and keep the tail short too.
        IncrementalRenderer code;
        const QString python = QStringLiteral("```python\ndef f(x: list[int]) -> dict[str, int]:\n    pass\n```\n\n");
        for (int i = 0; i < 20; ++i) {
            code.append(python);
        }
        QCOMPARE(code.stableBlockCount(), 20);
    }

    void definitionArrivingLateChangesEarlierLinks()
    {
        IncrementalRenderer renderer;
        renderer.append(QStringLiteral("First [link] here.\n\n"));
        for (int i = 0; i < 10; ++i) {
            renderer.append(QStringLiteral("Paragraph %1.\n\n").arg(i));
        }
        QCOMPARE(renderer.blocks().first().text, QStringLiteral("First [link] here."));
        renderer.append(QStringLiteral("[link]: https://example.com\n"));
        QCOMPARE(
            renderer.blocks().first().text, QStringLiteral("First <a href=\"https://example.com\">link</a> here."));
        QCOMPARE(renderer.blocks(), MarkdownRenderer::render(renderer.text()));
    }

    void setTextThenAppend()
    {
        const QString reply = zentrik::test::sampleReplies().first().second;
        IncrementalRenderer renderer;
        renderer.setText(reply.left(reply.size() / 2));
        QVERIFY(renderer.stableBlockCount() > 0);
        renderer.append(QStringView(reply).sliced(reply.size() / 2));
        QCOMPARE(renderer.text(), reply);
        QCOMPARE(renderer.blocks(), MarkdownRenderer::render(reply));
    }

    void clearStartsOver()
    {
        IncrementalRenderer renderer;
        renderer.append(QStringLiteral("[a]: /x\n\n```\nopen fence\n\n"));
        renderer.clear();
        QVERIFY(renderer.blocks().isEmpty());
        QCOMPARE(renderer.stableBlockCount(), 0);
        renderer.append(QStringLiteral("# New\n\ntext [a]\n\n"));
        QCOMPARE(dump(renderer.blocks()), QStringLiteral("heading1: New\nparagraph: text [a]"));
        QCOMPARE(renderer.stableBlockCount(), 2);
    }
};

ZENTRIK_TEST(IncrementalRendererTest)

#include "tst_incrementalrenderer.moc"
