#include "support/clirunner.h"
#include "support/testregistry.h"

#include <QTemporaryDir>
#include <QTest>

class MarkdownCliTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        QFile file(m_dir.filePath(QStringLiteral("reply.md")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("## Done\n\nSee **[the guide](https://x.org)** \xc3\xa9t\xc3\xa9.\n");
    }

    void run_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QByteArray>("input");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("out");
        QTest::addColumn<QString>("errStart"); // stderr must start with this; empty: stderr must be empty
        const auto row = [](const char *name, const QStringList &arguments, const QByteArray &input,
                             const int &exitCode, const QString &out, const QString &errStart) {
            QTest::newRow(name) << arguments << input << exitCode << out << errStart;
        };

        row("strip from stdin", QStringList { "markdown", "strip" }, QByteArray("# Hi\n**there** [x](y)\n"), 0,
            "Hi\nthere x\n", "");
        row("strip of blank text prints nothing", QStringList { "markdown", "strip" }, QByteArray(" \n\n"), 0, "", "");
        row("html from stdin", QStringList { "markdown", "html" }, QByteArray("| a |\n|---|\n| ~~b~~ |"), 0,
            "<table>\n<thead>\n<tr>\n<th>a</th>\n</tr>\n</thead>\n<tbody>\n<tr>\n"
            "<td><del>b</del></td>\n</tr>\n</tbody>\n</table>\n",
            "");
        row("html leaves raw html out", QStringList { "markdown", "html" }, QByteArray("<script>x</script>"), 0,
            "<!-- raw HTML omitted -->\n", "");
        row("no action", QStringList { "markdown" }, QByteArray(), 2, "",
            "zentrik-cli: missing the action: strip or html");
        row("unknown action", QStringList { "markdown", "render" }, QByteArray(), 2, "",
            "zentrik-cli: unknown action \"render\"");
        row("missing file", QStringList { "markdown", "html", "/nonexistent/reply.md" }, QByteArray(), 1, "",
            "zentrik-cli: cannot read /nonexistent/reply.md: ");
        row("directory", QStringList { "markdown", "strip", "/tmp" }, QByteArray(), 1, "",
            "zentrik-cli: cannot read /tmp: it is a directory");
    }

    void run()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QByteArray, input);
        QFETCH(int, exitCode);
        QFETCH(QString, out);
        QFETCH(QString, errStart);
        const CliText result = runCli(arguments, input);
        QCOMPARE(result.exitCode, exitCode);
        QCOMPARE(result.out, out);
        if (errStart.isEmpty()) {
            QCOMPARE(result.err, QString());
        } else {
            QVERIFY2(result.err.startsWith(errStart), qPrintable(result.err));
            // One line, so a script can show it as it is.
            QCOMPARE(result.err.count(QLatin1Char('\n')), 1);
        }
    }

    void readsFile_data()
    {
        QTest::addColumn<QString>("action");
        QTest::addColumn<QString>("out");
        QTest::newRow("strip") << "strip"
                               << "Done\n\nSee the guide \u00e9t\u00e9.\n";
        QTest::newRow("html")
            << "html"
            << "<h2>Done</h2>\n<p>See <strong><a href=\"https://x.org\">the guide</a></strong> \u00e9t\u00e9.</p>\n";
        QTest::newRow("help") << "--help"
                              << "";
    }

    void readsFile()
    {
        QFETCH(QString, action);
        QFETCH(QString, out);
        const CliText result
            = runCli({ QStringLiteral("markdown"), action, m_dir.filePath(QStringLiteral("reply.md")) });
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(result.err, QString());
        if (action == QStringLiteral("--help")) {
            QVERIFY2(result.out.startsWith(QStringLiteral("Usage: zentrik-cli markdown")), qPrintable(result.out));
            QVERIFY(result.out.contains(QStringLiteral("strip")));
            QVERIFY(result.out.contains(QStringLiteral("html")));
        } else {
            QCOMPARE(result.out, out);
        }
    }

private:
    QTemporaryDir m_dir;
};

ZENTRIK_TEST(MarkdownCliTest)

#include "tst_markdowncli.moc"
