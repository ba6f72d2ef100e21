#include "support/clirunner.h"
#include "support/testregistry.h"

#include <QTest>

namespace {

CliText run(const QStringList &arguments, const QByteArray &input = {})
{
    return runCli(QStringList { "redact" } + arguments, input);
}

} // namespace

// zentrik-cli redact.
class RedactCliTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void redactsTheArgument()
    {
        const CliText result = run({ "Call (555) 123-4567, Anna" });
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(result.out, QStringLiteral("Call [PHONE_NUMBER], Anna\n"));
    }

    void readsStdin_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QByteArray>("input");
        QTest::addColumn<QString>("expected");
        // Through a pipe into the program, where the bytes must come back as they went in.
        QTest::addColumn<bool>("asProgram");

        QTest::newRow("dash") << QStringList { "-" } << QByteArray("Mail bob@example.com\n")
                              << QStringLiteral("Mail [EMAIL_ADDRESS]\n") << false;
        QTest::newRow("no argument") << QStringList {} << QByteArray("Hi Anna.\nlogin: root\n")
                                     << QStringLiteral("Hi [NAME].\n[USERNAME]\n") << false;
        QTest::newRow("utf-8 kept") << QStringList {} << QString::fromUtf8("Grüße 😀 5551234567").toUtf8()
                                    << QString::fromUtf8("Grüße 😀 [PHONE_NUMBER]") << true;
    }

    void readsStdin()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QByteArray, input);
        QFETCH(QString, expected);
        QFETCH(bool, asProgram);
        const CliText result
            = asProgram ? runCliProcess(QStringList { "redact" } + arguments, input) : run(arguments, input);
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(result.out, expected);
    }

    void help()
    {
        const CliText result = run({ "--help" });
        QCOMPARE(result.exitCode, 0);
        QVERIFY2(result.out.contains(QStringLiteral("zentrik-cli redact")), qPrintable(result.out));
    }

    void usageErrors_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("two texts") << QStringList { "a", "b" };
        QTest::newRow("unknown option") << QStringList { "--json", "a" };
    }

    void usageErrors()
    {
        QFETCH(QStringList, arguments);
        const CliText result = run(arguments);
        QCOMPARE(result.exitCode, 2);
        QVERIFY(result.out.isEmpty());
        QCOMPARE(result.err.count(QLatin1Char('\n')), 1);
    }
};

ZENTRIK_TEST(RedactCliTest)
#include "tst_redactcli.moc"
