#include "app/contentviewmodel.h"
#include "app/licensegate.h"
#include "app/zentrikapp.h"
#include "model/apimanager.h"
#include "pdf/pdfchatviewmodel.h"
#include "render/markdownstrip.h"
#include "settings/preferences.h"
#include "support/fakeprovider.h"
#include "support/replies.h"
#include "support/testregistry.h"
#include "tools/askmeanythingviewmodel.h"
#include "tools/generatorviewmodel.h"
#include "windowharness.h"

#include "pdf/pdffixtures.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QtTest>

using namespace zentrik;
using namespace zentrik::test;

// The text tools in the real window, driven by mouse and keyboard against fake providers:
// a generator from its dashboard card to the copied reply, a model chosen in Settings
// reaching the next request, and a question about a PDF.
class ToolScreensTest : public QObject
{
    Q_OBJECT

    std::unique_ptr<WindowTestEnvironment> m_environment;
    FakeProvider *m_fake = nullptr;
    QTemporaryDir m_files;

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

    void generatorStreamsTheReplyAndCopiesItCleaned()
    {
        m_fake->on("POST", "/v1/chat/completions",
            ScriptedReply::sse({ test::chunkLine(QStringLiteral("## Slogans\n\n")),
                test::chunkLine(QStringLiteral("1. **Climb** higher\n")),
                test::chunkLine(QStringLiteral("2. Walk *further*\n")), test::doneLine }));
        const auto app = startApp();
        QVERIFY(app);
        QQuickWindow *window = app->window();
        GeneratorViewModel *generator = openSloganGenerator(window);
        QVERIFY(generator);
        QCOMPARE(generator->selectedTitle(), QStringLiteral("Slogan Generator"));

        QVERIFY(fillField(window, QStringLiteral("Brand/Product Name"), QStringLiteral("Acme Boots")));
        QVERIFY(fillField(window, QStringLiteral("Target Audience"), QStringLiteral("hikers")));
        QCOMPARE(generator->inputsMap().value(QStringLiteral("Target Audience")).toString(), QStringLiteral("hikers"));
        QVERIFY(click(findItem(window, QStringLiteral("generateButton"))));

        const QString expected = QStringLiteral("## Slogans\n\n1. **Climb** higher\n2. Walk *further*\n");
        QTRY_COMPARE_WITH_TIMEOUT(generator->output(), expected, 10000);
        QTRY_VERIFY(!generator->isGenerating());
        QVERIFY(visibleTexts(window).contains(QStringLiteral("Generated Content:")));
        QVERIFY(findItem(window, QStringLiteral("generatedContent"))->isVisible());
        QVERIFY(visibleTexts(window).join(QLatin1Char('\n')).contains(QStringLiteral("Climb")));
        QVERIFY(!findItem(window, QStringLiteral("generatorError"))->isVisible());

        const QString sent = test::lastMessageText(m_fake->lastRequest().json());
        QVERIFY2(
            sent.contains(QStringLiteral("Acme Boots")) && sent.contains(QStringLiteral("hikers")), qPrintable(sent));
        QCOMPARE(m_fake->lastRequest().json().object().value(QLatin1String("model")).toString(),
            QStringLiteral("gpt-3.5-turbo-1106"));

        QGuiApplication::clipboard()->clear();
        QQuickItem *copyButton = findItem(window, QStringLiteral("copyOutputButton"));
        QVERIFY(copyButton);
        QVERIFY(click(copyButton));
        QCOMPARE(QGuiApplication::clipboard()->text(), stripMarkdown(expected));
        QTRY_VERIFY(visibleTexts(window).contains(QStringLiteral("Copied!")));
        saveScreenshots(window, QStringLiteral("generator"));
    }

    void ctrlEnterGeneratesAndEscapeStopsKeepingThePartialReply()
    {
        m_fake->on("POST", "/v1/chat/completions",
            ScriptedReply::sse({ test::chunkLine(QStringLiteral("First line.\n")),
                                   test::chunkLine(QStringLiteral("Never shown.")), test::doneLine },
                std::chrono::milliseconds(5000)));
        const auto app = startApp();
        QVERIFY(app);
        QQuickWindow *window = app->window();
        GeneratorViewModel *generator = openSloganGenerator(window);
        QVERIFY(generator);
        QVERIFY(fillField(window, QStringLiteral("Brand/Product Name"), QStringLiteral("Acme")));

        QTest::keyClick(window, Qt::Key_Return, Qt::ControlModifier);
        QTRY_VERIFY(generator->isGenerating());
        QTRY_VERIFY(findItem(window, QStringLiteral("stopButton"))->isVisible());
        QTRY_COMPARE_WITH_TIMEOUT(generator->output(), QStringLiteral("First line.\n"), 4000);

        QTest::keyClick(window, Qt::Key_Escape);
        QTRY_VERIFY(!generator->isGenerating());
        QCOMPARE(generator->output(), QStringLiteral("First line.\n"));
        QVERIFY(generator->errorMessage().isEmpty());
        QVERIFY(!findItem(window, QStringLiteral("stopButton"))->isVisible());
        QVERIFY(findItem(window, QStringLiteral("generateButton"))->isEnabled());
    }

    void modelSavedInSettingsIsUsedByTheNextRequest()
    {
        m_fake->on("POST", "/v1/messages",
            ScriptedReply::json(test::anthropicReply(QStringLiteral(
                "Hello! Three ways to start your week:\n\n1. **Plan** the three things that matter most\n"
                "2. Block an hour for deep work each morning\n3. Ask me for an outline of anything you write\n\n"
                "Yours, *Haiku*."))));
        const auto app = startApp();
        QVERIFY(app);
        QQuickWindow *window = app->window();
        QTest::keyClick(window, Qt::Key_Comma, Qt::ControlModifier);
        QTRY_VERIFY(findItem(window, QStringLiteral("settingsView")));
        for (const QString &text : { QStringLiteral("Settings"), QStringLiteral("How It Works"),
                 QStringLiteral("🆓 Free models do not require an API key.") }) {
            QVERIFY2(visibleTexts(window).contains(text), qPrintable(text));
        }
        for (const QString &field : { QStringLiteral("openAIKeyField.input"), QStringLiteral("falAIKeyField.input"),
                 QStringLiteral("claudeKeyField.input") }) {
            QQuickItem *input = findItem(window, field);
            QVERIFY2(input, qPrintable(field));
            QCOMPARE(input->property("echoMode").toInt(), 2); // TextInput.Password
        }
        QQuickItem *picker = findItem(window, QStringLiteral("textModelPicker"));
        QVERIFY(picker);
        saveScreenshots(window, QStringLiteral("settings"));
        QCOMPARE(picker->property("currentText").toString(), QStringLiteral("GPT-4o Mini"));
        int haiku = -1;
        QVERIFY(QMetaObject::invokeMethod(picker, "indexOfValue", Q_RETURN_ARG(int, haiku),
            Q_ARG(QVariant, QStringLiteral("claude-3-haiku-20240307"))));
        QVERIFY(haiku > 0);
        picker->setProperty("currentIndex", haiku);
        QVERIFY(QMetaObject::invokeMethod(picker, "activated", Q_ARG(int, haiku)));
        auto *manager = app->engine()->singletonInstance<APIManager *>(qmlTypeId("Zentrik.Model", 1, 0, "APIManager"));
        QVERIFY(manager);
        QCOMPARE(manager->selectedTextModel(), QStringLiteral("gpt-4o-mini")); // nothing written before Save
        QVERIFY(click(findItem(window, QStringLiteral("saveButton"))));
        QTRY_VERIFY(visibleTexts(window).contains(QStringLiteral("Your changes have been saved successfully.")));
        QCOMPARE(manager->selectedTextModel(), QStringLiteral("claude-3-haiku-20240307"));
        QCOMPARE(Preferences().string(QString::fromLatin1(APIManager::textModelPreference)),
            QStringLiteral("claude-3-haiku-20240307"));
        QTest::keyClick(window, Qt::Key_Escape); // the notice holds the window until dismissed
        QTRY_VERIFY(!visibleTexts(window).contains(QStringLiteral("Your changes have been saved successfully.")));

        QVERIFY(click(findItem(window, QStringLiteral("sidebar:Ask Me Anything"))));
        QTRY_VERIFY(findItem(window, QStringLiteral("askMeAnythingView")));
        auto *chat
            = qobject_cast<AskMeAnythingViewModel *>(findObject(window, QStringLiteral("askMeAnythingViewModel")));
        QVERIFY(chat && chat->apiManager());
        chat->apiManager()->overrideUserKeys(QString(), QStringLiteral("sk-ant-window"), QString());

        QVERIFY(click(findItem(window, QStringLiteral("chatInputField"))));
        typeText(window, QStringLiteral("Say hello and help me start the week"));
        QTest::keyClick(window, Qt::Key_Return);
        QTRY_COMPARE_WITH_TIMEOUT(chat->messages()->rowCount(), 2, 10000);
        QTRY_VERIFY(visibleTexts(window).join(QLatin1Char('\n')).contains(QStringLiteral("Haiku")));

        const RecordedRequest request = m_fake->lastRequest();
        QCOMPARE(request.path, QByteArray("/v1/messages"));
        QCOMPARE(request.json().object().value(QLatin1String("model")).toString(),
            QStringLiteral("claude-3-haiku-20240307"));
        QCOMPARE(request.header("x-api-key"), QByteArray("sk-ant-window"));
        QCOMPARE(test::lastMessageText(request.json()), QStringLiteral("Say hello and help me start the week"));
        QVERIFY(chat->newMessage().isEmpty());
        saveScreenshots(window, QStringLiteral("ask-me-anything"));
    }

    void shiftEnterBreaksTheLineInsteadOfSending()
    {
        const auto app = startApp();
        QVERIFY(app);
        QQuickWindow *window = app->window();
        QVERIFY(click(findItem(window, QStringLiteral("sidebar:Ask Me Anything"))));
        QTRY_VERIFY(findItem(window, QStringLiteral("chatInputField")));
        QVERIFY(click(findItem(window, QStringLiteral("chatInputField"))));
        typeText(window, QStringLiteral("one"));
        QTest::keyClick(window, Qt::Key_Return, Qt::ShiftModifier);
        typeText(window, QStringLiteral("two"));
        auto *chat
            = qobject_cast<AskMeAnythingViewModel *>(findObject(window, QStringLiteral("askMeAnythingViewModel")));
        QVERIFY(chat);
        QCOMPARE(chat->newMessage(), QStringLiteral("one\ntwo"));
        QCOMPARE(chat->messages()->rowCount(), 0);
        QVERIFY(m_fake->requests().isEmpty());
    }

    void pdfShowsItsFirstPageAndAnswersAQuestion()
    {
        const QString path = m_files.filePath(QStringLiteral("handbook.pdf"));
        QVERIFY(pdffixtures::writeTextPdf(path,
            { QStringLiteral("Welcome to the staff handbook."),
                QStringLiteral("The product launch is planned for the ninth of March.") },
            QStringLiteral("Handbook")));
        m_fake->on("POST", "/v1/chat/completions",
            ScriptedReply::json(test::completion(QStringLiteral("The launch is on 9 March (page 2)."))));

        const auto app = startApp();
        QVERIFY(app);
        QQuickWindow *window = app->window();
        QVERIFY(click(findItem(window, QStringLiteral("sidebar:Chat With Your PDFs"))));
        QTRY_VERIFY(findItem(window, QStringLiteral("pdfChatView")));
        auto *chat = qobject_cast<PdfChatViewModel *>(findObject(window, QStringLiteral("pdfChatViewModel")));
        QVERIFY(chat && chat->apiManager());
        chat->apiManager()->overrideUserKeys(QStringLiteral("sk-window-test"), QString(), QString());

        // What the file dialog and a drop hand over: a file address.
        QVERIFY(chat->open(QUrl::fromLocalFile(path)));
        QCOMPARE(chat->pageCount(), 2);
        QQuickItem *pages = findItem(window, QStringLiteral("pdfPageView"));
        QVERIFY(pages);
        QTRY_VERIFY(pages->isVisible());
        QCOMPARE(pages->property("currentPage").toInt(), 0);
        // The first page is drawn: the view's document is loaded and its first page has a size.
        auto *document = pages->property("document").value<QObject *>();
        QVERIFY(document);
        QTRY_COMPARE(document->property("pageCount").toInt(), 2);
        QVERIFY(!visibleTexts(window).contains(QStringLiteral("Open a PDF or drop one here.")));

        QVERIFY(click(findItem(window, QStringLiteral("chatInputField"))));
        typeText(window, QStringLiteral("When is the launch?"));
        QTest::keyClick(window, Qt::Key_Return);
        QTRY_VERIFY_WITH_TIMEOUT(
            visibleTexts(window).join(QLatin1Char('\n')).contains(QStringLiteral("9 March")), 10000);
        const QString sent = test::lastMessageText(m_fake->lastRequest().json());
        QVERIFY2(sent.contains(QLatin1String("When is the launch?")), qPrintable(sent));
        QVERIFY2(sent.contains(QLatin1String("ninth of March")), qPrintable(sent));
        QCOMPARE(chat->citedPages(QStringLiteral("The launch is on 9 March (page 2).")), QList<int> { 2 });
        saveScreenshots(window, QStringLiteral("pdf-chat"));
    }
};

ZENTRIK_TEST(ToolScreensTest)
#include "tst_toolscreens.moc"
