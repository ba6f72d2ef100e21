#include "app/contentviewmodel.h"
#include "app/licensegate.h"
#include "app/zentrikapp.h"
#include "model/apimanager.h"
#include "support/fakeprovider.h"
#include "support/replies.h"
#include "support/testregistry.h"
#include "windowharness.h"

#include "pdf/pdfchatviewmodel.h"
#include "pdf/pdffixtures.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QQuickItem>
#include <QQuickWindow>
#include <QWheelEvent>
#include <QtTest>

using namespace zentrik;
using namespace zentrik::test;

namespace {

// Whether the item lies wholly inside the visible part of the flickable.
bool isInView(QQuickItem *item, QQuickItem *flickable)
{
    const QRectF area = flickable->mapRectToScene(QRectF(0, 0, flickable->width(), flickable->height()));
    const QRectF shown = item->mapRectToScene(QRectF(0, 0, item->width(), item->height()));
    return area.adjusted(-1, -1, 1, 1).contains(shown);
}

// Whether the item is drawn whole inside the window.
bool isInsideWindow(QQuickItem *item)
{
    const QRectF shown = item->mapRectToScene(QRectF(0, 0, item->width(), item->height()));
    return item->window() != nullptr && item->isVisible()
        && QRectF(QPointF(0, 0), item->window()->size()).adjusted(-1, -1, 1, 1).contains(shown);
}

// A turn of the mouse wheel over the item's centre, `notches` clicks away from the user
// (negative: towards them, which scrolls down).
void turnWheel(QQuickItem *item, int notches)
{
    static ulong clock = 1000;
    const QPointF centre = item->mapToScene(QPointF(item->width() / 2, item->height() / 2));
    const QPointF global = item->window()->mapToGlobal(centre.toPoint());
    for (int step = 0; step < std::abs(notches); ++step) {
        QWheelEvent event(centre, global, QPoint(), QPoint(0, notches > 0 ? 120 : -120), Qt::NoButton, Qt::NoModifier,
            Qt::NoScrollPhase, false);
        // A real wheel's clicks carry their time, from which Flickable works out the speed.
        clock += 150;
        event.setTimestamp(clock);
        QGuiApplication::sendEvent(item->window(), &event);
        QTest::qWait(20); // the pace of a hand on the wheel: the view scrolls between the clicks
    }
}

// The reply bubble drawn last in the conversation: the one lowest on the page.
QQuickItem *lowestCopyButton(QQuickWindow *window)
{
    QQuickItem *lowest = nullptr;
    qreal lowestY = -1;
    for (QObject *object : allObjects(window->contentItem())) {
        auto *item = qobject_cast<QQuickItem *>(object);
        if (!item || !item->isVisible() || !item->inherits("QQuickAbstractButton")
            || item->property("copyText").toString().isEmpty()) {
            continue;
        }
        const qreal y = item->mapToScene(QPointF(0, 0)).y();
        if (y > lowestY) {
            lowestY = y;
            lowest = item;
        }
    }
    return lowest;
}

// The copy button of the message that reads `content`.
QQuickItem *copyButtonOf(QQuickWindow *window, const QString &content)
{
    for (QObject *object : allObjects(window->contentItem())) {
        auto *item = qobject_cast<QQuickItem *>(object);
        if (item && item->isVisible() && item->inherits("QQuickAbstractButton")
            && item->property("copyText").toString() == content) {
            return item;
        }
    }
    return nullptr;
}

} // namespace

// The conversation screens laid out as a chat in the real window, driven by mouse and keys:
// the input stays at the bottom, the newest reply stays in view, the PDF's pages turn, and
// a refused request says what the provider said.
class ChatLayoutTest : public QObject
{
    Q_OBJECT

    std::unique_ptr<WindowTestEnvironment> m_environment;
    FakeProvider *m_fake = nullptr;
    QTemporaryDir m_files;

    // The real window on Ask Me Anything, reached through the sidebar, sending to the fake
    // OpenAI service with the given key (as if stored in Settings).
    static std::unique_ptr<ZentrikApp> openAskMeAnything(const QString &openAIKey = QStringLiteral("sk-layout-test"))
    {
        auto app = startApp();
        QObject *chat = app ? openScreen(app->window(), QStringLiteral("sidebar:Ask Me Anything"),
                            QStringLiteral("askMeAnythingView"), QStringLiteral("askMeAnythingViewModel"))
                            : nullptr;
        auto *manager = chat ? chat->property("apiManager").value<APIManager *>() : nullptr;
        if (!manager) {
            return nullptr;
        }
        manager->setSelectedTextModel(QStringLiteral("gpt-4o-mini"));
        manager->overrideUserKeys(openAIKey, QString(), QString());
        return app;
    }

    [[nodiscard]] static bool ask(QQuickWindow *window, const QString &question)
    {
        if (!click(findItem(window, QStringLiteral("chatInputField")))) {
            return false;
        }
        typeText(window, question);
        QTest::keyClick(window, Qt::Key_Return);
        return true;
    }

private Q_SLOTS:
    void init()
    {
        m_environment = std::make_unique<WindowTestEnvironment>();
        m_fake = &m_environment->fake();
    }

    void cleanup()
    {
        m_fake = nullptr;
        m_environment.reset();
    }

    void longConversationKeepsTheNewestReplyInView()
    {
        QString longReply;
        for (int line = 1; line <= 12; ++line) {
            longReply += QStringLiteral("Point %1 of the answer, long enough to take a line of its own.\n\n").arg(line);
        }
        m_fake->on("POST", "/v1/chat/completions", ScriptedReply::json(test::completion(longReply)));
        const auto app = openAskMeAnything();
        QVERIFY(app);
        QQuickWindow *window = app->window();
        QQuickItem *conversation = findItem(window, QStringLiteral("conversationView"));
        QQuickItem *input = findItem(window, QStringLiteral("chatInputField"));
        QVERIFY(conversation && input);

        for (int turn = 1; turn <= 4; ++turn) {
            QVERIFY(ask(window, QStringLiteral("Question %1").arg(turn)));
            QTRY_COMPARE_WITH_TIMEOUT(m_fake->requests().size(), qsizetype(turn), 10000);
            QTRY_COMPARE(conversation->property("count").toInt(), 2 * turn);
            QVERIFY(waitForFrame(window));
            // The input never moves off the window and the newest reply's end is in view.
            QVERIFY(isInsideWindow(input));
            QTRY_VERIFY(isInView(lowestCopyButton(window), conversation));
        }
        QVERIFY(conversation->property("contentHeight").toReal() > 2 * conversation->height());
        QVERIFY(!findItem(window, QStringLiteral("jumpToLatestButton"))->isVisible());

        // Scrolled up, the view stays put when more arrives and offers the way back.
        turnWheel(conversation, 6);
        QTRY_VERIFY(findItem(window, QStringLiteral("jumpToLatestButton"))->isVisible());
        QTRY_VERIFY(!conversation->property("moving").toBool());
        QVERIFY(waitForFrame(window));
        const qreal readingAt = conversation->property("contentY").toReal();
        QVERIFY(ask(window, QStringLiteral("Question 5")));
        QTRY_COMPARE(conversation->property("count").toInt(), 10);
        QVERIFY(waitForFrame(window));
        QVERIFY(qAbs(conversation->property("contentY").toReal() - readingAt) < 1);
        QVERIFY(!isInView(lowestCopyButton(window), conversation));

        QVERIFY(click(findItem(window, QStringLiteral("jumpToLatestButton"))));
        QTRY_VERIFY(isInView(lowestCopyButton(window), conversation));
        QTRY_VERIFY(!findItem(window, QStringLiteral("jumpToLatestButton"))->isVisible());
        saveScreenshots(window, QStringLiteral("ask-me-anything"));
    }

    // Each message has its own copy button: a reply goes to the clipboard cleaned of its
    // Markdown, a question as it was typed, and each button says "Copied!" for a moment.
    void copyButtonsCopyTheReplyCleanedAndTheQuestionAsTyped()
    {
        m_fake->on("POST", "/v1/chat/completions",
            ScriptedReply::json(test::completion(QStringLiteral("# Title\n\n**bold**"))));
        const auto app = openAskMeAnything();
        QVERIFY(app);
        QQuickWindow *window = app->window();
        QVERIFY(ask(window, QStringLiteral("**as typed**")));
        QTRY_VERIFY_WITH_TIMEOUT(copyButtonOf(window, QStringLiteral("# Title\n\n**bold**")), 10000);
        QQuickItem *replyButton = copyButtonOf(window, QStringLiteral("# Title\n\n**bold**"));
        QQuickItem *questionButton = copyButtonOf(window, QStringLiteral("**as typed**"));
        QVERIFY(questionButton);
        const auto *replyCopier = replyButton->property("copier").value<QObject *>();
        const auto *questionCopier = questionButton->property("copier").value<QObject *>();
        QVERIFY(replyCopier && questionCopier);

        QVERIFY(click(replyButton));
        QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("Title\n\nbold"));
        QVERIFY(replyCopier->property("isCopied").toBool());
        QCOMPARE(replyCopier->property("label").toString(), QStringLiteral("Copied!"));
        QVERIFY(!questionCopier->property("isCopied").toBool());

        QVERIFY(click(questionButton));
        QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("**as typed**"));
        QVERIFY(questionCopier->property("isCopied").toBool());
    }

    // The wheel over a reply's table scrolls the conversation, not nothing.
    void wheelPassesOverAReplysTable()
    {
        QString reply;
        for (int line = 1; line <= 20; ++line) {
            reply += QStringLiteral("A paragraph before the table, number %1.\n\n").arg(line);
        }
        reply += QStringLiteral("| Name | Value |\n|---|---|\n");
        for (int row = 1; row <= 8; ++row) {
            reply += QStringLiteral("| row %1 | %2 |\n").arg(row).arg(row * 11);
        }
        m_fake->on("POST", "/v1/chat/completions", ScriptedReply::json(test::completion(reply)));
        const auto app = openAskMeAnything();
        QVERIFY(app);
        QQuickWindow *window = app->window();
        QVERIFY(ask(window, QStringLiteral("A table, please")));
        QTRY_VERIFY_WITH_TIMEOUT(findItem(window, QStringLiteral("replyTable")), 10000);
        QQuickItem *conversation = findItem(window, QStringLiteral("conversationView"));
        QQuickItem *table = findItem(window, QStringLiteral("replyTable"));
        QVERIFY(waitForFrame(window));
        // The view follows the reply to its end, where the table is.
        QTRY_VERIFY(isInView(table, conversation));
        const qreal before = conversation->property("contentY").toReal();
        QVERIFY(before > 0);
        turnWheel(table, 1);
        QTRY_VERIFY(conversation->property("contentY").toReal() < before);
    }

    // The whole-reply path: the fixed message stays first, the provider's own words follow.
    void refusedRequestShowsWhatTheProviderSaid_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("fixedMessage");
        QTest::addColumn<QString>("details");
        QTest::newRow("503 with a message") << 503 << QByteArray(R"({"error":{"message":"The engine is overloaded"}})")
                                            << QStringLiteral("Invalid response received from the server.")
                                            << QStringLiteral("Details: HTTP 503: The engine is overloaded");
        QTest::newRow("502 with an HTML page")
            << 502 << QByteArray("<html><body>Bad gateway</body></html>")
            << QStringLiteral("Failed to parse the server response: ") << QStringLiteral("Details: HTTP 502");
        QTest::newRow("429 quoting the key back")
            << 429 << QByteArray(R"({"error":{"message":"Rate limit for sk-layout-test reached"}})")
            << QStringLiteral("Invalid response received from the server.")
            << QStringLiteral("Details: HTTP 429: Rate limit for [KEY] reached");
        QTest::newRow("500 with an empty body")
            << 500 << QByteArray() << QStringLiteral("No data received from the server.")
            << QStringLiteral("Details: HTTP 500");
    }

    void refusedRequestShowsWhatTheProviderSaid()
    {
        QFETCH(int, status);
        QFETCH(QByteArray, body);
        QFETCH(QString, fixedMessage);
        QFETCH(QString, details);
        m_fake->on("POST", "/v1/chat/completions", ScriptedReply::json(body, status));
        const auto app = openAskMeAnything();
        QVERIFY(app);
        QQuickWindow *window = app->window();
        QVERIFY(ask(window, QStringLiteral("Hello")));
        QQuickItem *error = findItem(window, QStringLiteral("chatError"));
        QVERIFY(error);
        QTRY_VERIFY_WITH_TIMEOUT(error->isVisible(), 10000);
        const QString shown = error->property("text").toString();
        QVERIFY2(shown.startsWith(fixedMessage), qPrintable(shown));
        QVERIFY2(shown.contains(QStringLiteral("\n\nTip: Check your internet connection")), qPrintable(shown));
        const QStringList lines = shown.split(QLatin1Char('\n'));
        QCOMPARE(lines.filter(QStringLiteral("Details:")), QStringList { details });
        QVERIFY(!shown.contains(QStringLiteral("sk-layout-test")));
        QVERIFY(!findItem(window, QStringLiteral("openSettingsButton"))->isVisible());
    }

    void missingKeyOffersSettings()
    {
        const auto app = openAskMeAnything(QString());
        QVERIFY(app);
        QQuickWindow *window = app->window();
        QVERIFY(ask(window, QStringLiteral("Hello")));
        QTRY_VERIFY(findItem(window, QStringLiteral("chatError"))->isVisible());
        QVERIFY(m_fake->requests().isEmpty());
        QVERIFY(click(findItem(window, QStringLiteral("openSettingsButton"))));
        QTRY_VERIFY(findItem(window, QStringLiteral("settingsView")));
        QCOMPARE(app->navigation()->screen(), QStringLiteral("settings"));
    }

    void pdfPagesTurnWithWheelKeysAndField()
    {
        QStringList pages;
        for (int page = 1; page <= 5; ++page) {
            pages << QStringLiteral("This is page %1 of the report.").arg(page);
        }
        const QString path = m_files.filePath(QStringLiteral("report.pdf"));
        QVERIFY(pdffixtures::writeTextPdf(path, pages, QStringLiteral("Report")));

        const auto app = startApp();
        QVERIFY(app);
        QQuickWindow *window = app->window();
        QVERIFY(click(findItem(window, QStringLiteral("sidebar:Chat With Your PDFs"))));
        QTRY_VERIFY(findItem(window, QStringLiteral("pdfChatView")));
        auto *chat = qobject_cast<PdfChatViewModel *>(findObject(window, QStringLiteral("pdfChatViewModel")));
        QVERIFY(chat);
        // What the file dialog hands over: a file address.
        QVERIFY(chat->open(QUrl::fromLocalFile(path)));
        QQuickItem *pageView = findItem(window, QStringLiteral("pdfPageView"));
        QQuickItem *indicator = findItem(window, QStringLiteral("pdfPageIndicator"));
        QVERIFY(pageView && indicator);
        QTRY_VERIFY(pageView->isVisible());
        QTRY_COMPARE(indicator->property("text").toString(), QStringLiteral("of 5"));
        QVERIFY(waitForFrame(window));
        QQuickItem *field = findItem(window, QStringLiteral("pdfPageField"));
        QVERIFY(field);
        const auto shownPage = [field] { return field->property("value").toInt(); };
        QCOMPARE(shownPage(), 1);

        // The wheel scrolls down through every page to the last.
        for (int turns = 0; turns < 200 && shownPage() < 5; ++turns) {
            turnWheel(pageView, -1);
        }
        QCOMPARE(shownPage(), 5);
        QCOMPARE(chat->currentPage(), 4);

        // Page Up and Page Down move one page at a time.
        QTest::mouseClick(window, Qt::LeftButton, Qt::NoModifier,
            pageView->mapToScene(QPointF(pageView->width() / 2, pageView->height() / 2)).toPoint());
        QTest::keyClick(window, Qt::Key_PageUp);
        QTRY_COMPARE(shownPage(), 4);
        QTest::keyClick(window, Qt::Key_PageUp);
        QTRY_COMPARE(shownPage(), 3);
        QTest::keyClick(window, Qt::Key_PageDown);
        QTRY_COMPARE(shownPage(), 4);

        // The page field jumps to the page typed into it.
        QVERIFY(click(field));
        QTest::keyClick(window, Qt::Key_A, Qt::ControlModifier);
        typeText(window, QStringLiteral("1"));
        QTest::keyClick(window, Qt::Key_Return);
        QTRY_COMPARE(shownPage(), 1);
        QCOMPARE(chat->currentPage(), 0);
    }

    // At the smallest window size every conversation screen keeps its heading, its input and
    // its send button inside the window.
    void conversationScreensFitTheSmallestWindow_data()
    {
        QTest::addColumn<QString>("opener");
        QTest::addColumn<QString>("screen");
        QTest::newRow("ask") << QStringLiteral("sidebar:Ask Me Anything") << QStringLiteral("askMeAnythingView");
        QTest::newRow("pdf") << QStringLiteral("sidebar:Chat With Your PDFs") << QStringLiteral("pdfChatView");
        QTest::newRow("debugger") << QStringLiteral("agentCard:Code Debugger") << QStringLiteral("codeDebuggerView");
        QTest::newRow("sample data") << QStringLiteral("agentCard:Sample Data Generator")
                                     << QStringLiteral("sampleDataView");
    }

    void conversationScreensFitTheSmallestWindow()
    {
        QFETCH(QString, opener);
        QFETCH(QString, screen);
        const auto app = startApp();
        QVERIFY(app);
        QQuickWindow *window = app->window();
        QCOMPARE(window->minimumSize(), QSize(800, 600));
        window->resize(800, 600);
        QTRY_COMPARE(window->size(), QSize(800, 600));
        QVERIFY(waitForFrame(window));
        QVERIFY(click(findItem(window, opener)));
        QTRY_VERIFY(findItem(window, screen));
        QVERIFY(waitForFrame(window));
        QVERIFY(isInsideWindow(findItem(window, QStringLiteral("chatInputField"))));
        QVERIFY(isInsideWindow(findItem(window, QStringLiteral("sendButton"))));
        QQuickItem *heading = findItem(findItem(window, screen), QStringLiteral("screenHeadingTitle"));
        QVERIFY(heading);
        QTRY_VERIFY(heading->window());
        QVERIFY2(isInsideWindow(heading), qPrintable(heading->property("text").toString()));
        saveScreenshots(window, screen + QStringLiteral("-800x600"));
    }
};

ZENTRIK_TEST(ChatLayoutTest)
#include "tst_chatlayout.moc"
