#include "pdf/pageranker.h"
#include "pdf/pdfchatviewmodel.h"
#include "pdf/pdfprompts.h"
#include "pdf/pdftext.h"
#include "pdffixtures.h"
#include "support/providerfixture.h"
#include "support/replies.h"
#include "support/testregistry.h"
#include "tools/chatmessagelistmodel.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QtTest>

using namespace zentrik;
using test::ProviderFixture;
using test::ScriptedReply;

namespace {

QString filler(int page, int words)
{
    static const QStringList vocabulary { QStringLiteral("report"), QStringLiteral("quarter"), QStringLiteral("market"),
        QStringLiteral("growth"), QStringLiteral("team"), QStringLiteral("plan"), QStringLiteral("budget"),
        QStringLiteral("review"), QStringLiteral("office") };
    QRandomGenerator random { quint32(page) };
    QStringList text;
    for (int i = 0; i < words; ++i) {
        text.append(vocabulary.at(random.bounded(vocabulary.size())));
    }
    return text.join(QLatin1Char(' '));
}

QString sentText(const test::RecordedRequest &request)
{
    return test::lastMessageText(request.json());
}

} // namespace

class PdfTest : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;

    QString path(const QString &name) const { return m_dir.filePath(name); }

private Q_SLOTS:
    void extractsTextPerPage()
    {
        const QString file = path(QStringLiteral("three.pdf"));
        QVERIFY(
            pdffixtures::writeTextPdf(file, { QStringLiteral("Alpha page"), QString(), QStringLiteral("Gamma page") },
                QStringLiteral("Quarterly Report")));
        const PdfText text = extractPdfText(file);
        QVERIFY2(text.ok(), qPrintable(text.message()));
        QCOMPARE(text.pageCount(), 3);
        QVERIFY2(text.pages.at(0).contains(QStringLiteral("Alpha page")), qPrintable(text.pages.at(0)));
        QVERIFY(text.pages.at(1).trimmed().isEmpty());
        QVERIFY(text.pages.at(2).contains(QStringLiteral("Gamma page")));
        QCOMPARE(text.title, QStringLiteral("Quarterly Report"));
    }

    void problemsHaveClearMessages_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<int>("problem");
        QTest::newRow("missing") << QStringLiteral("missing") << int(PdfText::Problem::fileNotFound);
        QTest::newRow("not a pdf") << QStringLiteral("text") << int(PdfText::Problem::notPdf);
        QTest::newRow("pdf signature, broken body") << QStringLiteral("broken") << int(PdfText::Problem::notPdf);
        QTest::newRow("scan") << QStringLiteral("scan") << int(PdfText::Problem::noText);
        QTest::newRow("encrypted") << QStringLiteral("encrypted") << int(PdfText::Problem::encrypted);
    }

    void problemsHaveClearMessages()
    {
        QFETCH(QString, kind);
        QFETCH(int, problem);
        const QString file = path(kind + QStringLiteral(".pdf"));
        if (kind == QStringLiteral("text") || kind == QStringLiteral("broken")) {
            QFile out(file);
            QVERIFY(out.open(QIODevice::WriteOnly));
            out.write(kind == QStringLiteral("text") ? "just some notes\n" : "%PDF-1.7\nnot really a pdf\n");
        } else if (kind == QStringLiteral("scan")) {
            QVERIFY(pdffixtures::writeScannedPdf(file));
        } else if (kind == QStringLiteral("encrypted")) {
            const QString plain = path(QStringLiteral("plain.pdf"));
            QVERIFY(pdffixtures::writeTextPdf(plain, { QStringLiteral("secret plans") }));
            if (!pdffixtures::encryptWithQpdf(plain, file)) {
                QFAIL("qpdf is needed to make an encrypted PDF (scripts/setup installs it)");
            }
        }
        const PdfText text = extractPdfText(file);
        QCOMPARE(int(text.problem), problem);
        QVERIFY(!text.message().isEmpty());
        QVERIFY(!text.message().contains(QLatin1Char('\n')));

        PdfChatViewModel chat;
        QVERIFY(!chat.openFile(file));
        QCOMPARE(chat.documentError(), text.message());
        QVERIFY(!chat.hasDocument());
    }

    void rankingFindsTheAnswerPageWithinBudget()
    {
        QStringList pages;
        for (int page = 0; page < 200; ++page) {
            pages.append(filler(page, 120));
        }
        pages[137] += QStringLiteral(" The warehouse in Tromsø stores the spare turbine blades.");
        pages[12] += QStringLiteral(" A turbine was mentioned once.");
        const QString question = QStringLiteral("Where are the spare turbine blades stored?");
        QCOMPARE(PageRanker(pages).rank(question).first(), 137);

        const DocumentContext context = buildDocumentContext(pages, question, 20000);
        QVERIFY(!context.complete);
        QVERIFY(context.pageNumbers.contains(138));
        QVERIFY(context.text.size() <= 20000);
        QVERIFY(context.text.contains(QStringLiteral("--- Page 138 ---\n")));
        QVERIFY(std::is_sorted(context.pageNumbers.begin(), context.pageNumbers.end()));

        // A document that fits is sent whole, and a page over the budget is cut at it.
        const DocumentContext whole = buildDocumentContext(pages.mid(0, 3), question, 20000);
        QVERIFY(whole.complete);
        QCOMPARE(whole.pageNumbers, (QList<int> { 1, 2, 3 }));
        const DocumentContext cut = buildDocumentContext({ QString(5000, QLatin1Char('x')) }, question, 1000);
        QCOMPARE(cut.text.size(), 1000);
    }

    void questionPromptOfALongDocumentStaysInBudget()
    {
        QStringList pages;
        for (int page = 0; page < 200; ++page) {
            pages.append(filler(page, 150) + QStringLiteral(" page marker %1").arg(page + 1));
        }
        pages[41] += QStringLiteral(" The launch date is the ninth of March.");
        const QString file = path(QStringLiteral("long.pdf"));
        QVERIFY(pdffixtures::writeTextPdf(file, pages));
        PdfChatViewModel chat;
        QVERIFY(chat.openFile(file));
        QCOMPARE(chat.pageCount(), 200);
        const QString prompt = chat.questionPrompt(QStringLiteral("What is the launch date?"));
        QVERIFY(prompt.contains(QStringLiteral("--- Page 42 ---")));
        QVERIFY(prompt.size() < pdfContextBudget + 2000);
        QVERIFY(prompt.contains(QStringLiteral("Cite the pages")));
        QVERIFY(prompt.endsWith(QStringLiteral("Question: What is the launch date?")));
    }

    void parsesSummaryReplies_data()
    {
        QTest::addColumn<QString>("reply");
        QTest::addColumn<bool>("parsed");
        QTest::addColumn<int>("points");
        const QString json = QStringLiteral(R"({"title":"Q3","summary":"Sales grew.","keyPoints":["a","b","c"]})");
        QTest::newRow("bare json") << json << true << 3;
        QTest::newRow("fenced json") << QStringLiteral("```json\n") + json + QStringLiteral("\n```") << true << 3;
        QTest::newRow("words around") << QStringLiteral("Here it is: ") + json + QStringLiteral(" Hope it helps.")
                                      << true << 3;
        QTest::newRow("too many points are cut to five")
            << QStringLiteral(R"({"title":"T","summary":"S","keyPoints":["1","2","3","4","5","6","7"]})") << true << 5;
        QTest::newRow("snake case key") << QStringLiteral(R"({"title":"T","summary":"S","key_points":["x"]})") << true
                                        << 1;
        QTest::newRow("markdown") << QStringLiteral("# Summary\n\n- one\n- two") << false << 0;
        QTest::newRow("broken json") << QStringLiteral(R"({"title": "T", "summary": )") << false << 0;
        QTest::newRow("no key points") << QStringLiteral(R"({"title":"T","summary":"S","keyPoints":[]})") << false << 0;
    }

    void parsesSummaryReplies()
    {
        QFETCH(QString, reply);
        QFETCH(bool, parsed);
        QFETCH(int, points);
        const std::optional<PdfSummary> summary = parsePdfSummary(reply);
        QCOMPARE(summary.has_value(), parsed);
        if (summary) {
            QCOMPARE(summary->keyPoints.size(), points);
            QVERIFY(!summary->summary.isEmpty());
        }
    }

    void citedPagesAreFound_data()
    {
        QTest::addColumn<QString>("answer");
        QTest::addColumn<QList<int>>("pages");
        QTest::newRow("one") << QStringLiteral("It is on page 4.") << QList<int> { 4 };
        QTest::newRow("several") << QStringLiteral("See pages 2 and 7 (page 2).") << QList<int> { 2, 7 };
        QTest::newRow("abbreviated") << QStringLiteral("(p. 3), pp. 5-6") << QList<int> { 3, 5, 6 };
        QTest::newRow("out of range") << QStringLiteral("page 0 and page 99") << QList<int> {};
        QTest::newRow("none") << QStringLiteral("No citation, 42 things.") << QList<int> {};
    }

    void citedPagesAreFound()
    {
        QFETCH(QString, answer);
        QFETCH(QList<int>, pages);
        QCOMPARE(citedPages(answer, 10), pages);
    }

    void summaryAndQuestionThroughTheProvider()
    {
        ProviderFixture fixture;
        fixture.use(QStringLiteral("gpt-4o-mini"));
        const QString file = path(QStringLiteral("doc.pdf"));
        QVERIFY(pdffixtures::writeTextPdf(file,
            { QStringLiteral("Introduction to turbines"), QStringLiteral("Blades are stored in the north warehouse") },
            QStringLiteral("Turbines")));
        PdfChatViewModel chat;
        chat.setApiManager(fixture.manager.get());
        QVERIFY(chat.openFile(file));

        fixture.fake->enqueue("POST", "/v1/chat/completions",
            ScriptedReply::json(test::completion(QStringLiteral("```json\n{\"title\":\"Turbines\",\"summary\":\"About "
                                                                "blades.\",\"keyPoints\":[\"a\",\"b\",\"c\"]}\n```"))));
        chat.summarize();
        QVERIFY(chat.isSummarizing());
        QTRY_VERIFY(!chat.isSummarizing());
        QCOMPARE(chat.summaryTitle(), QStringLiteral("Turbines"));
        QCOMPARE(chat.keyPoints().size(), 3);
        QVERIFY(sentText(fixture.fake->lastRequest()).contains(QStringLiteral("--- Page 2 ---")));

        fixture.fake->enqueue(
            "POST", "/v1/chat/completions", ScriptedReply::json(test::completion(QStringLiteral("Not JSON at all"))));
        chat.summarize();
        QTRY_VERIFY(!chat.isSummarizing());
        QVERIFY(chat.keyPoints().isEmpty());
        QCOMPARE(chat.summaryMarkdown(), QStringLiteral("Not JSON at all"));
        QVERIFY(chat.hasSummary());

        fixture.fake->enqueue("POST", "/v1/chat/completions",
            ScriptedReply::json(test::completion(QStringLiteral("In the north warehouse (page 2)."))));
        chat.setNewMessage(QStringLiteral("Where are the blades?"));
        chat.send();
        QTRY_VERIFY(!chat.isProcessing());
        QCOMPARE(chat.messages()->count(), 2);
        QCOMPARE(chat.messages()->at(0).content, QStringLiteral("Where are the blades?"));
        const QString answer = chat.messages()->at(1).content;
        QCOMPARE(chat.citedPages(answer), (QList<int> { 2 }));
        chat.setCurrentPage(chat.citedPages(answer).first() - 1);
        QCOMPARE(chat.currentPage(), 1);
        chat.setCurrentPage(500);
        QCOMPARE(chat.currentPage(), 1);
        QVERIFY(sentText(fixture.fake->lastRequest()).endsWith(QStringLiteral("Question: Where are the blades?")));
    }

    void emptyQuestionAndNoDocument()
    {
        ProviderFixture fixture;
        fixture.use(QStringLiteral("gpt-4o-mini"));
        PdfChatViewModel chat;
        chat.setApiManager(fixture.manager.get());
        chat.setNewMessage(QStringLiteral("anything?"));
        chat.send();
        QCOMPARE(chat.errorMessage(), QStringLiteral("Open a PDF first."));
        chat.summarize();
        QCOMPARE(chat.errorMessage(), QStringLiteral("Open a PDF first."));

        const QString file = path(QStringLiteral("short.pdf"));
        QVERIFY(pdffixtures::writeTextPdf(file, { QStringLiteral("Short text") }));
        QVERIFY(chat.openFile(file));
        QVERIFY(chat.errorMessage().isEmpty());
        chat.setNewMessage(QStringLiteral("   "));
        chat.send();
        QCOMPARE(chat.errorMessage(), QStringLiteral("Type a question about the document first."));
        QCOMPARE(fixture.fake->requestCount(), 0);
    }

    void personalInformationInTheDocumentIsGuarded()
    {
        ProviderFixture fixture;
        fixture.use(QStringLiteral("gpt-4o-mini"));
        fixture.fake->on("POST", "/v1/chat/completions", ScriptedReply::json(test::completion(QStringLiteral("ok"))));
        const QString file = path(QStringLiteral("contacts.pdf"));
        QVERIFY(pdffixtures::writeTextPdf(file, { QStringLiteral("Contact: ops@example.com for access") }));
        PdfChatViewModel chat;
        chat.setApiManager(fixture.manager.get());
        QVERIFY(chat.openFile(file));
        chat.setNewMessage(QStringLiteral("Who do I contact?"));
        chat.send();
        QVERIFY(chat.piiAlertVM()->showAlert());
        QCOMPARE(fixture.fake->requestCount(), 0);
        chat.sendRedacted();
        QTRY_VERIFY(!chat.isProcessing());
        const QString sent = sentText(fixture.fake->lastRequest());
        QVERIFY(sent.contains(QStringLiteral("[EMAIL_ADDRESS]")));
        QVERIFY(!sent.contains(QStringLiteral("ops@example.com")));
    }
};
ZENTRIK_TEST(PdfTest)

#include "tst_pdf.moc"
