#include "render/incrementalrenderer.h"
#include "render/markdownmodel.h"
#include "render/markdownrenderer.h"
#include "render/renderbudget.h"

#include "support/testregistry.h"

#include <QTest>

using namespace zentrik;

namespace {

QByteArray addresses(int count)
{
    QByteArray text;
    for (int i = 0; i < count; ++i) {
        text += "user" + QByteArray::number(i) + "@example.com ";
    }
    return text;
}

} // namespace

// Replies beyond what one cmark parse may take: parsed in parts or shown as plain text, with
// nothing lost, while everything within the bounds renders as one parse.
class RenderBudgetTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fitsOneParse_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<bool>("fits");

        QTest::newRow("a megabyte") << QByteArray(renderbudget::maxParseBytes, 'a') << true;
        QTest::newRow("a byte more") << QByteArray(renderbudget::maxParseBytes + 1, 'a') << false;
        QTest::newRow("16,000 addresses in one paragraph") << addresses(16000) << false;
        // The same addresses, a hundred to a paragraph, cost cmark little.
        QByteArray spread;
        for (int i = 0; i < 160; ++i) {
            spread += addresses(100) + "\n\n";
        }
        QTest::newRow("16,000 addresses in 160 paragraphs") << spread << true;
        QTest::newRow("blank lines with blanks in them split paragraphs")
            << QByteArray(addresses(1000) + "\r\n \t\r\n" + addresses(1000)) << true;
        QTest::newRow("a line break does not") << QByteArray(addresses(1000) + "\n" + addresses(1000)) << false;
    }

    void fitsOneParse()
    {
        QFETCH(QByteArray, text);
        QFETCH(bool, fits);
        QCOMPARE(renderbudget::fitsOneParse(text), fits);
    }

    void partsCoverTheTextAndKeepFencesWhole()
    {
        const QByteArray paragraph(1000, 'p');
        QByteArray text;
        for (int i = 0; i < 400; ++i) {
            text += paragraph + "\n\n";
        }
        // A fence holding blank lines across a place where a part would otherwise end.
        text += "```\ncode\n\n" + QByteArray(300 << 10, 'c') + "\n\nmore\n```\n\n" + paragraph + "\r\n\r\n";
        text += "~~~~\n\n" + QByteArray(300 << 10, 't') + "\n~~~\n\nstill fenced\n\n~~~~\n\nafter";

        const QList<QByteArrayView> parts = renderbudget::parts(text);
        QVERIFY(parts.size() > 2);
        QByteArray joined;
        for (const QByteArrayView part : parts) {
            joined += part;
            const qsizetype fences = part.count("```") + part.count("~~~~\n");
            QVERIFY2(fences % 2 == 0, "a part ends inside a code fence");
        }
        QCOMPARE(joined, text);
    }

    // cmark took over 400 MB for the first and ran out of memory on a line of 50 MB.
    void oversizedRepliesBecomePlainText_data()
    {
        QTest::addColumn<QByteArray>("text");

        QTest::newRow("16,000 addresses in one paragraph") << addresses(16000);
        QTest::newRow("one line of 3 MB") << QByteArray("a <b> & \"c\" www.d.org e@f.gh ").repeated(100000);
    }

    void oversizedRepliesBecomePlainText()
    {
        QFETCH(QByteArray, text);

        const QString html = MarkdownRenderer::toHtml(QString::fromUtf8(text));
        QVERIFY(html.startsWith(QStringLiteral("<p>")));
        QVERIFY(!html.contains(QStringLiteral("<a ")));
        QString shown = html;
        shown.remove(QStringLiteral("<p>")).remove(QStringLiteral("</p>\n"));
        QCOMPARE(shown, QString::fromUtf8(text.trimmed()).toHtmlEscaped());

        QList<MarkdownBlock> blocks;
        QList<MarkdownRenderer::SourceSpan> spans;
        MarkdownRenderer::renderInto(text, blocks, &spans);
        QCOMPARE(spans.size(), blocks.size());
        QVERIFY(blocks.size() > (text.size() > (1 << 20) ? 10 : 1));
        QString joined;
        for (const MarkdownBlock &block : blocks) {
            QCOMPARE(block.type, MarkdownBlock::Type::Paragraph);
            joined += block.text;
        }
        QCOMPARE(joined, QString::fromUtf8(text.trimmed()).toHtmlEscaped());
    }

    // Past the bounds, the parts that fit are still rendered, each where it lies.
    void largeRepliesRenderInParts()
    {
        QByteArray text = "# Title\n\n";
        for (int i = 0; i < 3000; ++i) {
            text += "Paragraph *" + QByteArray::number(i) + "* with a [link](https://x.org).\n\n";
        }
        text += addresses(16000) + "\n\n- last\n";
        QVERIFY(!renderbudget::fitsOneParse(text));

        QList<MarkdownBlock> blocks;
        QList<MarkdownRenderer::SourceSpan> spans;
        MarkdownRenderer::renderInto(text, blocks, &spans);
        QCOMPARE(blocks.first().type, MarkdownBlock::Type::Heading);
        QCOMPARE(
            blocks.at(3000).text, QStringLiteral("Paragraph <i>2999</i> with a <a href=\"https://x.org\">link</a>."));
        QCOMPARE(spans.at(3000).startLine, 3 + 2 * 2999);
        QCOMPARE(blocks.last().type, MarkdownBlock::Type::BulletList);
        QCOMPARE(spans.last().startLine, 3 + 2 * 3000 + 2);
        QVERIFY(blocks.at(3001).text.startsWith(QStringLiteral("user0@example.com user1@")));

        const QString html = MarkdownRenderer::toHtml(QString::fromUtf8(text));
        QVERIFY(html.startsWith(QStringLiteral("<h1>Title</h1>\n")));
        QVERIFY(html.endsWith(QStringLiteral("<ul>\n<li>last</li>\n</ul>\n")));
    }

    // A streamed reply that outgrows one parse goes on as plain text in blocks of bounded
    // size, the blocks before it kept, nothing lost or doubled: pieces of seven characters
    // split CR LF pairs, surrogate pairs and the escapes.
    void streamedReplyPastTheBoundGoesOnAsPlainText()
    {
        const QString head = QStringLiteral("# Title\n\nFirst paragraph.\n\n");
        const QString line = QStringLiteral("a <b> & \"c\"\r\nd\re\n\U0001F600 ").repeated(60000);
        const QString text = head + line;
        const qsizetype preloaded = renderbudget::maxParseBytes - 3;

        IncrementalRenderer renderer;
        MarkdownModel model;
        renderer.setText(text.first(preloaded));
        model.setText(text.first(preloaded));
        QVERIFY(!renderer.isPlain());
        for (qsizetype at = preloaded; at < text.size(); at += 7) {
            renderer.append(QStringView(text).sliced(at, qMin<qsizetype>(7, text.size() - at)));
            model.appendText(text.sliced(at, qMin<qsizetype>(7, text.size() - at)));
        }
        QVERIFY(renderer.isPlain());
        QCOMPARE(renderer.text(), text);
        QCOMPARE(model.blocks(), renderer.blocks());
        QCOMPARE(renderer.stableBlockCount(), renderer.blocks().size() - 1);

        const QList<MarkdownBlock> &blocks = renderer.blocks();
        QCOMPARE(blocks.at(0).type, MarkdownBlock::Type::Heading);
        QCOMPARE(blocks.at(1).text, QStringLiteral("First paragraph."));
        QString shown;
        for (qsizetype i = 2; i < blocks.size(); ++i) {
            QVERIFY(!blocks.at(i).text.back().isHighSurrogate());
            shown += blocks.at(i).text;
        }
        QVERIFY(blocks.size() > 2 + line.size() / IncrementalRenderer::plainBlockLength);
        QString expected = line.toHtmlEscaped();
        expected.replace(QStringLiteral("\r\n"), QStringLiteral("<br>"))
            .replace(QLatin1Char('\r'), QStringLiteral("<br>"))
            .replace(QLatin1Char('\n'), QStringLiteral("<br>"));
        QCOMPARE(shown, expected);
    }
};

ZENTRIK_TEST(RenderBudgetTest)

#include "tst_renderbudget.moc"
