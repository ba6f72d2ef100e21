#include "pdffixtures.h"
#include "support/clirunner.h"
#include "support/fakeprovider.h"
#include "support/testregistry.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QtTest>

using zentrik::test::CliFixture;
using zentrik::test::ScriptedReply;

// zentrik-cli pdf summary / pdf ask against the fake provider.
class PdfVerbTest : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    std::unique_ptr<CliFixture> m_cli;

    void reply(const QString &text)
    {
        const QJsonObject message { { "role", "assistant" }, { "content", text } };
        m_cli->fake.enqueue("POST", "/v1/chat/completions",
            ScriptedReply::json(
                QJsonDocument(QJsonObject { { "choices", QJsonArray { QJsonObject { { "message", message } } } } })
                    .toJson()));
    }

private Q_SLOTS:
    void init() { m_cli = std::make_unique<CliFixture>(CliFixture::Keys { { "OPENAI_API_KEY", "sk-test" } }); }
    void cleanup() { m_cli.reset(); }

    void summaryPrintsTheCard()
    {
        const QString file = m_dir.filePath("doc.pdf");
        QVERIFY(pdffixtures::writeTextPdf(file, { "Budget for the year", "Hiring plan" }));
        reply(R"({"title":"Plans","summary":"Budget and hiring.","keyPoints":["Budget","Hiring","Timeline"]})");
        const CliResult result = runCli({ "pdf", "summary", file, "--model", "gpt-4o-mini" });
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(
            result.out, QByteArray("Plans\n\nBudget and hiring.\n\nKey points:\n- Budget\n- Hiring\n- Timeline\n"));
    }

    void askPrintsTheAnswer()
    {
        const QString file = m_dir.filePath("doc2.pdf");
        QVERIFY(pdffixtures::writeTextPdf(file, { "Intro", "The office opens at nine" }));
        reply("At nine (page 2).");
        const CliResult result = runCli({ "pdf", "ask", file, "When does the office open?", "--model", "gpt-4o-mini" });
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(result.out, QByteArray("At nine (page 2).\n"));
        const QString sent = m_cli->fake.lastRequest()
                                 .json()
                                 .object()
                                 .value("messages")
                                 .toArray()
                                 .last()
                                 .toObject()
                                 .value("content")
                                 .toString();
        QVERIFY(sent.contains("--- Page 2 ---"));
    }

    // A follow-up about the same document carries the earlier question (without the pages)
    // and answer; a moved document is found again only as the same bytes.
    void askContinuesAStoredConversation()
    {
        const QString file = m_dir.filePath("hours.pdf");
        QVERIFY(pdffixtures::writeTextPdf(file, { "Intro", "The office opens at nine" }));
        reply("At nine (page 2).");
        reply("At five.");
        reply("Never.");
        QCOMPARE(runCli({ "pdf", "ask", file, "When does it open?", "--model", "gpt-4o-mini" }).exitCode, 0);
        QCOMPARE(runCli({ "pdf", "ask", "--continue-last", "And close?", "--model", "gpt-4o-mini" }).exitCode, 0);
        const QJsonArray messages = m_cli->fake.lastRequest().json().object().value("messages").toArray();
        QCOMPARE(messages.size(), 4);
        QCOMPARE(messages.at(1).toObject().value("content").toString(), "When does it open?");
        QCOMPARE(messages.at(2).toObject().value("content").toString(), "At nine (page 2).");
        QVERIFY(messages.at(3).toObject().value("content").toString().contains("--- Page 2 ---"));

        const QString moved = m_dir.filePath("moved.pdf");
        QVERIFY(QFile::rename(file, moved));
        const CliText lost = runCli({ "pdf", "ask", "--continue-last", "Why?", "--model", "gpt-4o-mini" });
        QCOMPARE(lost.exitCode, 1);
        QVERIFY2(lost.err.contains("is no longer at"), qPrintable(lost.err));
        const QString other = m_dir.filePath("other.pdf");
        QVERIFY(pdffixtures::writeTextPdf(other, { "Something else" }));
        QVERIFY(runCli({ "pdf", "ask", "--continue-last", other, "Why?" }).err.contains("is not the PDF"));
        QCOMPARE(runCli({ "pdf", "ask", "--continue-last", moved, "Why?", "--model", "gpt-4o-mini" }).exitCode, 0);
        QCOMPARE(m_cli->fake.lastRequest().json().object().value("messages").toArray().size(), 6);
    }

    void problems_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QByteArray>("err");
        const QString notPdf = m_dir.filePath("notes.txt");
        QFile out(notPdf);
        out.open(QIODevice::WriteOnly);
        out.write("plain text");
        out.close();
        QTest::newRow("not a pdf") << QStringList { "pdf", "summary", notPdf } << 1
                                   << QByteArray("zentrik-cli: This file is not a PDF.\n");
        QTest::newRow("missing") << QStringList { "pdf", "ask", m_dir.filePath("none.pdf"), "q" } << 1
                                 << QByteArray("zentrik-cli: The file could not be found.\n");
        QTest::newRow("empty question") << QStringList { "pdf", "ask", notPdf, "  " } << 2 << QByteArray();
        QTest::newRow("unknown action") << QStringList { "pdf", "print", notPdf } << 2 << QByteArray();
    }

    void problems()
    {
        QFETCH(QStringList, arguments);
        QFETCH(int, exitCode);
        QFETCH(QByteArray, err);
        const CliResult result = runCli(arguments);
        QCOMPARE(result.exitCode, exitCode);
        if (!err.isEmpty()) {
            QCOMPARE(result.err, err);
        }
        QCOMPARE(m_cli->fake.requestCount(), 0);
    }
};
ZENTRIK_TEST(PdfVerbTest)

#include "tst_pdfverb.moc"
