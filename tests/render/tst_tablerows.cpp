#include "render/markdownrenderer.h"
#include "render/tablerows.h"

#include "support/testregistry.h"

#include <QTest>

using namespace zentrik;

class TableRowsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void matchesTheTableParse_data()
    {
        QTest::addColumn<QString>("row");
        // False where the rows must be left to a parse of the table.
        QTest::addColumn<bool>("rendered");

        QTest::newRow("plain") << "| a | b | c |" << true;
        QTest::newRow("markup") << "| `code()` | **bold** and *em* | ~~gone~~ |" << true;
        QTest::newRow("emoji and accents") << "| \U0001F600 | caf\u00e9 | \u00fcber |" << true;
        QTest::newRow("unfinished cell") << "| a | `co" << true;
        QTest::newRow("too many cells") << "| a | b | c | d | e |" << true;
        QTest::newRow("empty cells") << "| | |" << true;
        QTest::newRow("pipe splits a code span") << "| `a|b` | c |" << true;
        QTest::newRow("emphasis does not cross cells") << "| *a | b* | c |" << true;
        QTest::newRow("addresses and entities") << "| www.example.com | a@b.co | x &amp; &copy |" << true;
        QTest::newRow("raw html") << "| x <b>y</b> | a <span class=\"y\"> | z |" << true;
        QTest::newRow("html block cell") << "| <div> | b | c |" << false;
        QTest::newRow("pipe alone") << "|" << false;
        QTest::newRow("escaped pipe") << "| a \\| b | c |" << false;
        QTest::newRow("tab") << "| a\tb | c |" << false;
        QTest::newRow("list marker cell") << "| - x | 1. | 2) |" << false;
        QTest::newRow("fence cell") << "| ```x | b | c |" << false;
        QTest::newRow("no leading pipe") << "a | b | c" << false;
    }

    // Whatever the rows render to must be what the table's own parse gives them.
    void matchesTheTableParse()
    {
        QFETCH(QString, row);
        QFETCH(bool, rendered);
        const QString header = QStringLiteral("| h1 | h2 | h3 |\n|:---|:-:|--:|\n");
        const QList<MarkdownBlock> parsed = MarkdownRenderer::render(header + row);

        const std::optional<QList<QStringList>> rows = TableRows::render({ QStringView(row) }, 3);
        QCOMPARE(rows.has_value(), rendered);
        if (rows) {
            QCOMPARE(parsed.size(), 1);
            QCOMPARE(parsed.first().tableRows, *rows);
        }

        // Two rows at once, the finished one first, land in the right cells.
        const QString finished = QStringLiteral("| x **y** | 7 |");
        const std::optional<QList<QStringList>> both
            = TableRows::render({ QStringView(finished), QStringView(row) }, 3);
        QCOMPARE(both.has_value(), rendered);
        if (both) {
            const QList<MarkdownBlock> twoRows = MarkdownRenderer::render(header + finished + QLatin1Char('\n') + row);
            QCOMPARE(twoRows.first().tableRows, *both);
        }
    }

    void isParagraphText_data()
    {
        QTest::addColumn<QString>("cell");
        QTest::addColumn<bool>("paragraph");

        QTest::newRow("word") << "word" << true;
        QTest::newRow("year") << "2024" << true;
        QTest::newRow("code span") << "`x`" << true;
        QTest::newRow("bold") << "**x**" << true;
        QTest::newRow("emoji") << "\U0001F600" << true;
    }

    void isParagraphText()
    {
        QFETCH(QString, cell);
        QFETCH(bool, paragraph);
        QCOMPARE(TableRows::isParagraphText(cell), paragraph);
        if (paragraph) {
            // Alone, it is indeed one paragraph.
            const QList<MarkdownBlock> blocks = MarkdownRenderer::render(cell);
            QCOMPARE(blocks.size(), 1);
            QCOMPARE(blocks.first().type, MarkdownBlock::Type::Paragraph);
        }
    }
};

ZENTRIK_TEST(TableRowsTest)

#include "tst_tablerows.moc"
