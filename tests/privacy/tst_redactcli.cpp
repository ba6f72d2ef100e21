#include "support/testregistry.h"

#include <QProcess>
#include <QTest>

namespace {

struct Result
{
    int exitCode = -1;
    QString out;
    QString err;
};

Result run(const QStringList &arguments, const QByteArray &input = {})
{
    QProcess process;
    process.start(QStringLiteral(ZENTRIK_CLI_PATH), QStringList { QStringLiteral("redact") } + arguments);
    if (!process.waitForStarted()) {
        return {};
    }
    process.write(input);
    process.closeWriteChannel();
    if (!process.waitForFinished(20000) || process.exitStatus() != QProcess::NormalExit) {
        return {};
    }
    return { process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
        QString::fromUtf8(process.readAllStandardError()) };
}

} // namespace

// zentrik-cli redact, run as a separate process.
class RedactCliTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void redactsTheArgument()
    {
        const Result result = run({ QStringLiteral("Call (555) 123-4567, Anna") });
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(result.out, QStringLiteral("Call [PHONE_NUMBER], Anna\n"));
    }

    void readsStdin_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QByteArray>("input");
        QTest::addColumn<QString>("expected");

        QTest::newRow("dash") << QStringList { QStringLiteral("-") } << QByteArray("Mail bob@example.com\n")
                              << QStringLiteral("Mail [EMAIL_ADDRESS]\n");
        QTest::newRow("no argument") << QStringList {} << QByteArray("Hi Anna.\nlogin: root\n")
                                     << QStringLiteral("Hi [NAME].\n[USERNAME]\n");
        QTest::newRow("utf-8 kept") << QStringList {} << QString::fromUtf8("Grüße 😀 5551234567").toUtf8()
                                    << QString::fromUtf8("Grüße 😀 [PHONE_NUMBER]");
    }

    void readsStdin()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QByteArray, input);
        QFETCH(QString, expected);
        const Result result = run(arguments, input);
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(result.out, expected);
    }

    void help()
    {
        const Result result = run({ QStringLiteral("--help") });
        QCOMPARE(result.exitCode, 0);
        QVERIFY2(result.out.contains(QStringLiteral("zentrik-cli redact")), qPrintable(result.out));
    }

    void usageErrors_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("two texts") << QStringList { QStringLiteral("a"), QStringLiteral("b") };
        QTest::newRow("unknown option") << QStringList { QStringLiteral("--json"), QStringLiteral("a") };
    }

    void usageErrors()
    {
        QFETCH(QStringList, arguments);
        const Result result = run(arguments);
        QCOMPARE(result.exitCode, 2);
        QVERIFY(result.out.isEmpty());
        QCOMPARE(result.err.count(QLatin1Char('\n')), 1);
    }
};

ZENTRIK_TEST(RedactCliTest)
#include "tst_redactcli.moc"
