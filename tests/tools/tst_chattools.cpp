#include "privacy/piialertviewmodel.h"
#include "support/providerfixture.h"
#include "support/replies.h"
#include "support/testregistry.h"
#include "tools/askmeanythingviewmodel.h"
#include "tools/chatmessagelistmodel.h"
#include "tools/devtoolviewmodel.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QtTest>

using namespace zentrik;
using test::ProviderFixture;
using test::ScriptedReply;

namespace {
QString lastUserContent(const test::RecordedRequest &request)
{
    return test::lastMessageText(request.json());
}
} // namespace

// Ask Me Anything, the Code Debugger and the Sample Data Generator against the fake provider.
class ChatToolsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void debuggerComposesShowsAndClearsSuggestion()
    {
        ProviderFixture fixture;
        fixture.use(QStringLiteral("gpt-4o-mini"));
        fixture.fake->on("POST", "/v1/chat/completions",
            ScriptedReply::sse({ test::chunkLine(QStringLiteral("Missing ")),
                test::chunkLine(QStringLiteral("operand.")), test::doneLine }));
        DevToolViewModel vm;
        QAbstractItemModelTester tester(vm.messages(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        vm.setApiManager(fixture.manager.get());
        vm.toggleSuggestion(QStringLiteral("Logic Error"));
        QCOMPARE(vm.selectedSuggestion(), QStringLiteral("Logic Error"));
        vm.setInput(QStringLiteral("x = 1 +"));
        vm.send();
        const QString expected = QStringLiteral("There seems to be a logic error in my program. Can you assist in "
                                                "finding the issue?\n\nx = 1 +");
        QCOMPARE(vm.messages()->at(0).content, expected);
        QVERIFY(vm.selectedSuggestion().isEmpty());
        QVERIFY(vm.input().isEmpty());
        QVERIFY(vm.isStreaming());
        QCOMPARE(vm.buttonText(), QStringLiteral("Streaming..."));
        QTRY_VERIFY(!vm.isProcessing());
        QCOMPARE(lastUserContent(fixture.fake->lastRequest()), expected);
        QCOMPARE(vm.messages()->count(), 2);
        QCOMPARE(vm.messages()->at(1).content, QStringLiteral("Missing operand."));
        QVERIFY(vm.streamedContent().isEmpty());
        QCOMPARE(vm.buttonText(), QStringLiteral("Send"));
    }

    void emailShownAsTypedButSentRedacted()
    {
        ProviderFixture fixture;
        fixture.use(QStringLiteral("gpt-4o-mini"));
        fixture.fake->on("POST", "/v1/chat/completions",
            ScriptedReply::sse({ test::chunkLine(QStringLiteral("ok")), test::doneLine }));
        DevToolViewModel vm;
        vm.setApiManager(fixture.manager.get());
        vm.setTool(QStringLiteral("sampleData"));
        vm.setInput(QStringLiteral("rows for jane.doe@example.com"));
        vm.send();
        QCOMPARE(vm.messages()->at(0).content, QStringLiteral("rows for jane.doe@example.com"));
        QTRY_VERIFY(!vm.isProcessing());
        QCOMPARE(lastUserContent(fixture.fake->lastRequest()), QStringLiteral("rows for [EMAIL_ADDRESS]"));
    }

    void anthropicModelWaitsForWholeReply()
    {
        ProviderFixture fixture;
        fixture.use(QStringLiteral("claude-3-haiku-20240307"));
        fixture.fake->on(
            "POST", "/v1/messages", ScriptedReply::json(test::anthropicReply(QStringLiteral("Whole reply"))));
        DevToolViewModel vm;
        vm.setApiManager(fixture.manager.get());
        QSignalSpy streaming(&vm, &DevToolViewModel::isStreamingChanged);
        vm.setInput(QStringLiteral("why?"));
        vm.send();
        QCOMPARE(vm.buttonText(), QStringLiteral("Processing..."));
        QTRY_VERIFY(!vm.isProcessing());
        QCOMPARE(streaming.count(), 0);
        QCOMPARE(vm.messages()->at(1).content, QStringLiteral("Whole reply"));
        QVERIFY(!fixture.fake->lastRequest().json().object().contains(QStringLiteral("stream")));
    }

    void streamsForFreeAndGptIdsOnly_data()
    {
        QTest::addColumn<QString>("model");
        QTest::addColumn<bool>("streams");
        QTest::newRow("free") << QStringLiteral("google/gemma-2-9b-it:free") << true;
        QTest::newRow("claude") << QStringLiteral("claude-instant") << false;
        QTest::newRow("gpt elsewhere") << QStringLiteral("my-gpt-4") << false;
    }

    void streamsForFreeAndGptIdsOnly()
    {
        QFETCH(QString, model);
        QFETCH(bool, streams);
        QCOMPARE(DevToolViewModel::streamsReplies(model), streams);
    }

    // Whatever arrived stays as a message; only a reply the user stopped carries the mark,
    // and only a failed one the error with its tip.
    void partialReplyIsKept_data()
    {
        QTest::addColumn<bool>("userStops");
        QTest::newRow("the stream fails") << false;
        QTest::newRow("the user stops it") << true;
    }

    void partialReplyIsKept()
    {
        QFETCH(bool, userStops);
        ProviderFixture fixture;
        fixture.use(QStringLiteral("gpt-4o-mini"));
        ScriptedReply reply = ScriptedReply::sse({ test::chunkLine(QStringLiteral("partial")),
            userStops ? test::chunkLine(QStringLiteral("late")) : test::errorLine(QStringLiteral("boom")) });
        if (userStops) {
            reply.pieces[1].pauseBefore = std::chrono::milliseconds(3000);
        }
        fixture.fake->on("POST", "/v1/chat/completions", reply);
        DevToolViewModel vm;
        vm.setApiManager(fixture.manager.get());
        vm.setInput(QStringLiteral("help"));
        vm.send();
        if (userStops) {
            QTRY_COMPARE(vm.streamedContent(), QStringLiteral("partial"));
            vm.stop();
        }
        QTRY_VERIFY(!vm.isProcessing());
        QVERIFY(!vm.isStreaming());
        QCOMPARE(vm.messages()->count(), 2);
        QCOMPARE(vm.messages()->at(1).content, QStringLiteral("partial"));
        QCOMPARE(vm.messages()->data(vm.messages()->index(1), ChatMessageListModel::IsStoppedRole).toBool(), userStops);
        QVERIFY(!vm.messages()->data(vm.messages()->index(0), ChatMessageListModel::IsStoppedRole).toBool());
        if (userStops) {
            QVERIFY2(vm.errorMessage().isEmpty(), qPrintable(vm.errorMessage()));
        } else {
            QVERIFY(vm.errorMessage().contains(QStringLiteral("boom")));
            QVERIFY(vm.errorMessage().endsWith(
                QStringLiteral("\n\nTip: Check your internet connection or try restarting the app.")));
        }
    }

    void blankInputDoesNothing()
    {
        ProviderFixture fixture;
        fixture.use(QStringLiteral("gpt-4o-mini"));
        DevToolViewModel debugger;
        debugger.setApiManager(fixture.manager.get());
        debugger.setInput(QStringLiteral(" \n\t "));
        debugger.send();
        AskMeAnythingViewModel ask;
        ask.setApiManager(fixture.manager.get());
        ask.setNewMessage(QStringLiteral("\n  "));
        ask.send();
        QVERIFY(!debugger.isProcessing() && !ask.isProcessing());
        QCOMPARE(debugger.messages()->count() + ask.messages()->count(), 0);
        QCOMPARE(fixture.manager->httpClient().activeCallCount(), 0);
    }

    void askConfirmationPaths_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<int>("choice"); // 0 nothing detected, 1 original, 2 redacted
        QTest::addColumn<QString>("shown");
        QTest::newRow("nothing detected") << QStringLiteral("  What is Qt?  ") << 0 << QStringLiteral("What is Qt?");
        QTest::newRow("original") << QStringLiteral("Which user can pass the login?") << 1
                                  << QStringLiteral("Which user can pass the login?");
        QTest::newRow("redacted") << QStringLiteral("write to a@b.io") << 2
                                  << QStringLiteral("write to [EMAIL_ADDRESS]");
    }

    void askConfirmationPaths()
    {
        QFETCH(QString, typed);
        QFETCH(int, choice);
        QFETCH(QString, shown);
        ProviderFixture fixture;
        fixture.use(QStringLiteral("gpt-4o-mini"));
        fixture.fake->on(
            "POST", "/v1/chat/completions", ScriptedReply::json(test::completion(QStringLiteral("Answer"))));
        AskMeAnythingViewModel vm;
        QAbstractItemModelTester tester(vm.messages(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        vm.setApiManager(fixture.manager.get());
        vm.setSelectedSuggestion(QStringLiteral("Grammar Checker"));
        vm.setNewMessage(typed);
        vm.send();
        if (choice != 0) {
            QVERIFY(vm.piiAlertVM()->showAlert());
            QCOMPARE(vm.newMessage(), typed); // the input stays while the dialog is open
            QCOMPARE(vm.messages()->count(), 0);
            choice == 1 ? vm.sendOriginal() : vm.sendRedacted();
            QVERIFY(!vm.piiAlertVM()->showAlert());
        }
        QVERIFY(vm.isProcessing());
        QTRY_VERIFY(!vm.isProcessing());
        QCOMPARE(vm.messages()->count(), 2);
        QCOMPARE(vm.messages()->at(0).content, shown);
        QCOMPARE(vm.messages()->at(1).content, QStringLiteral("Answer"));
        QCOMPARE(lastUserContent(fixture.fake->lastRequest()),
            QStringLiteral("Please check the following text for grammatical errors and provide corrections: ") + shown);
        QVERIFY(vm.newMessage().isEmpty());
    }

    void askFailureAppendsTip()
    {
        ProviderFixture fixture;
        fixture.use(QStringLiteral("gpt-4o-mini"));
        fixture.fake->on("POST", "/v1/chat/completions", ScriptedReply::json(QByteArray("{\"choices\": []}")));
        AskMeAnythingViewModel vm;
        vm.setApiManager(fixture.manager.get());
        vm.setNewMessage(QStringLiteral("hello"));
        vm.send();
        QTRY_VERIFY(!vm.isProcessing());
        QCOMPARE(vm.errorMessage(),
            QStringLiteral("Invalid response received from the server.\n\nTip: Check your internet "
                           "connection or try restarting the app."));
        QCOMPARE(vm.messages()->count(), 1);
    }

    void ruleRepliesAreMarked()
    {
        ChatMessageListModel list;
        list.append(ChatMessageRecord::Role::assistant, QStringLiteral("---"));
        list.append(ChatMessageRecord::Role::assistant, QStringLiteral("text"));
        list.append(ChatMessageRecord::Role::user, QStringLiteral("---"));
        QVERIFY(list.data(list.index(0), ChatMessageListModel::IsRuleRole).toBool());
        QVERIFY(!list.data(list.index(1), ChatMessageListModel::IsRuleRole).toBool());
        QVERIFY(!list.data(list.index(2), ChatMessageListModel::IsRuleRole).toBool());
        QCOMPARE(list.data(list.index(2), ChatMessageListModel::SymbolRole).toString(),
            QStringLiteral("person.circle.fill"));
        QVERIFY(list.data(list.index(2), ChatMessageListModel::BlocksRole).value<QObject *>() == nullptr);
    }
};
ZENTRIK_TEST(ChatToolsTest)

#include "tst_chattools.moc"
