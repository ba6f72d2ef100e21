#include "render/linetext.h"

#include "support/testregistry.h"

#include <QTest>

using namespace zentrik;

class LineTextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void roleIsFixed_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<bool>("fixed");

        QTest::newRow("word") << "Hello" << true;
        QTest::newRow("empty") << "" << false;
        QTest::newRow("spaces") << "   " << false;
        QTest::newRow("hash may become a heading") << "#" << false;
        QTest::newRow("heading marker") << "## " << false;
        QTest::newRow("hashtag") << "#hashtag" << true;
        QTest::newRow("seven hashes") << "####### seven" << true;
        QTest::newRow("number may become an item") << "12" << false;
        QTest::newRow("number and dot") << "12." << false;
        QTest::newRow("year") << "2024 was" << true;
        QTest::newRow("decimal") << "1.5 times" << false;
        QTest::newRow("numbered item text") << "1. item" << true;
        QTest::newRow("nested number may become a list") << "- 1" << false;
        QTest::newRow("dash") << "-" << false;
        QTest::newRow("dash and space") << "- " << false;
        QTest::newRow("bullet item text") << "- item" << true;
        QTest::newRow("spaced rule") << "- - -" << false;
        QTest::newRow("rule") << "---" << false;
        QTest::newRow("dashes then a word") << "--- x" << true;
        QTest::newRow("stars") << "* * *" << false;
        QTest::newRow("bold lead-in") << "**Note**" << true;
        QTest::newRow("two backticks") << "``" << false;
        QTest::newRow("code span") << "``x" << true;
        QTest::newRow("fence") << "```" << false;
        QTest::newRow("html") << "<div" << false;
        QTest::newRow("quote text") << "> quote" << true;
        QTest::newRow("quote number") << "> 1" << false;
        QTest::newRow("task decided") << "- [ ] task" << true;
        QTest::newRow("task undecided") << "- [" << false;
        QTest::newRow("table delimiter") << "|---|" << false;
        QTest::newRow("table row") << "| a |" << true;
        QTest::newRow("underline then text") << "=== x" << true;
        QTest::newRow("tab before item") << "\t- item" << true;
    }

    void roleIsFixed()
    {
        QFETCH(QString, line);
        QFETCH(bool, fixed);
        QCOMPARE(LineText::roleIsFixed(line), fixed);
    }

    void startsText_data()
    {
        QTest::addColumn<QString>("content");
        QTest::addColumn<bool>("text");

        QTest::newRow("word") << "word" << true;
        QTest::newRow("bold") << "**Bold**" << true;
        QTest::newRow("emphasis") << "_em_" << true;
        QTest::newRow("bullet") << "* item" << false;
        QTest::newRow("code span") << "`code`" << true;
        QTest::newRow("fence start") << "``" << false;
        QTest::newRow("task") << "[ ] task" << false;
        QTest::newRow("heading") << "# x" << false;
        QTest::newRow("quote") << "> x" << false;
        QTest::newRow("number") << "1. x" << false;
        QTest::newRow("parenthesis") << "(aside)" << true;
        QTest::newRow("one letter is too little") << "x" << false;
    }

    void startsText()
    {
        QFETCH(QString, content);
        QFETCH(bool, text);
        QCOMPARE(LineText::startsText(content), text);
    }

    void mayDefineReference_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("from");
        QTest::addColumn<bool>("may");

        QTest::newRow("definition") << "[a]: /url" << 0 << true;
        QTest::newRow("on a later line") << "text\n[x]: /u" << 0 << true;
        QTest::newRow("after CR") << "text\r[x]: /u" << 0 << true;
        QTest::newRow("in a list item") << "- [a]: x" << 0 << true;
        QTest::newRow("in a quote") << "> [a]: x" << 0 << true;
        QTest::newRow("inside a sentence") << "See [a]: not one" << 0 << false;
        QTest::newRow("type hint in code") << "def f(x) -> dict[str, int]:" << 0 << false;
        QTest::newRow("space before the colon") << "[x] : y" << 0 << false;
        QTest::newRow("label across lines") << "[a\nb]: /u" << 0 << true;
        QTest::newRow("only looks from the new text on") << "[a]: x\n\nmore text" << 8 << false;
        QTest::newRow("bracket too far back") << "[" + QString(1200, QLatin1Char('a')) + "]: x" << 0 << false;
    }

    void mayDefineReference()
    {
        QFETCH(QString, text);
        QFETCH(int, from);
        QFETCH(bool, may);
        QCOMPARE(LineText::mayDefineReference(text, from), may);
    }
};

ZENTRIK_TEST(LineTextTest)

#include "tst_linetext.moc"
