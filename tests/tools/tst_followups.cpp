#include "model/textrequest.h"
#include "support/providerfixture.h"
#include "support/replies.h"
#include "support/storedhistory.h"
#include "support/testregistry.h"
#include "tools/askmeanythingviewmodel.h"
#include "tools/devtoolviewmodel.h"
#include "tools/followup.h"
#include "tools/generatorviewmodel.h"

#include <QSignalSpy>
#include <QtTest>

using namespace zentrik;
using test::ProviderFixture;
using test::ScriptedReply;
using namespace std::chrono_literals;

namespace {

// "role: text" for each message of a chat request, whether its content is a plain string or
// a list of typed parts.
QStringList conversationOf(const QJsonDocument &request)
{
    QStringList messages;
    for (const QJsonValue &value : request.object().value(QStringLiteral("messages")).toArray()) {
        const QJsonObject message = value.toObject();
        QJsonDocument single(QJsonObject { { QStringLiteral("messages"), QJsonArray { message } } });
        messages.append(
            message.value(QStringLiteral("role")).toString() + QStringLiteral(": ") + test::lastMessageText(single));
    }
    return messages;
}

void ask(AskMeAnythingViewModel &vm, const QString &text)
{
    vm.setNewMessage(text);
    vm.send();
    QTRY_VERIFY(!vm.isProcessing());
}

} // namespace

// Follow-up questions: what a second send carries for each provider, the budget, the
// settings, and going on with a stored conversation, regenerating and editing.
class FollowUpTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void secondSendCarriesTheFirstExchange_data()
    {
        QTest::addColumn<QString>("model");
        QTest::addColumn<QByteArray>("path");
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<QByteArray>("firstBody");
        QTest::addColumn<QStringList>("system");
        QTest::newRow("OpenAI, after the system message")
            << "gpt-4o-mini" << QByteArray("/v1/chat/completions") << test::completion(QStringLiteral("Four."))
            << QByteArray(R"({"messages":[{"content":"You are a helpful assistant.","role":"system"},)"
                          R"({"content":"What is 2+2?","role":"user"}],"model":"gpt-4o-mini"})")
            << QStringList { QStringLiteral("system: You are a helpful assistant.") };
        QTest::newRow("Anthropic") << "claude-3-haiku-20240307" << QByteArray("/v1/messages")
                                   << test::anthropicReply(QStringLiteral("Four."))
                                   << QByteArray(R"({"max_tokens":1024,"messages":[{"content":"What is 2+2?",)"
                                                 R"("role":"user"}],"model":"claude-3-haiku-20240307"})")
                                   << QStringList();
    }

    void secondSendCarriesTheFirstExchange()
    {
        QFETCH(QString, model);
        QFETCH(QByteArray, path);
        QFETCH(QByteArray, reply);
        QFETCH(QByteArray, firstBody);
        QFETCH(QStringList, system);
        ProviderFixture fixture;
        fixture.use(model);
        fixture.fake->on("POST", path, ScriptedReply::json(reply));
        test::StoredHistory history;
        AskMeAnythingViewModel vm;
        vm.setApiManager(fixture.manager.get());
        vm.setHistory(history.service.get());
        ask(vm, QStringLiteral("What is 2+2?"));
        ask(vm, QStringLiteral("And 3+3?"));

        const QList<test::RecordedRequest> requests = fixture.fake->requests();
        QCOMPARE(requests.size(), 2);
        QCOMPARE(requests.at(0).body, firstBody);
        QCOMPARE(conversationOf(requests.at(1).json()),
            (system + QStringList { "user: What is 2+2?", "assistant: Four.", "user: And 3+3?" }));
        QCOMPARE(history.texts(), (QStringList { "What is 2+2?", "Four.", "And 3+3?", "Four." }));
        QCOMPARE(history.conversations().first().messages.first().model, model);
    }

    // The free models' whole-reply request, as the manager builds it, at the fake provider
    // (this build may carry no key for them, so the manager itself would refuse).
    void openRouterBodyCarriesEarlierMessages()
    {
        ProviderFixture fixture;
        fixture.fake->on("POST", "/api/v1/chat/completions", ScriptedReply::json(test::completion("ok")));
        const QList<ChatMessage> earlier { ChatMessage(ChatMessage::Role::user, QStringLiteral("Q1")),
            ChatMessage(ChatMessage::Role::assistant, QStringLiteral("A1")) };
        for (const QList<ChatMessage> &carried : { QList<ChatMessage>(), earlier }) {
            bool done = false;
            fixture.manager->httpClient().send(TextRequest::build(TextProvider::openRouter, QStringLiteral("m:free"),
                                                   QStringLiteral("Q2"), QStringLiteral("key"), false, carried),
                nullptr, [&](const HttpResult &) { done = true; });
            QTRY_VERIFY(done);
        }
        QCOMPARE(fixture.fake->requests().at(0).body,
            QByteArray(R"({"messages":[{"content":"Q2","role":"user"}],"model":"m:free"})"));
        QCOMPARE(conversationOf(fixture.fake->lastRequest().json()),
            (QStringList { "user: Q1", "assistant: A1", "user: Q2" }));
    }

    // A streamed follow-up in the Code Debugger: the earlier question goes as it was sent,
    // redacted, without being redacted or confirmed again.
    void streamedFollowUpCarriesTheRedactedQuestion()
    {
        ProviderFixture fixture;
        fixture.use(QStringLiteral("gpt-4o-mini"));
        fixture.fake->on("POST", "/v1/chat/completions",
            ScriptedReply::sse({ test::chunkLine(QStringLiteral("ok")), test::doneLine }));
        test::StoredHistory history;
        DevToolViewModel vm;
        vm.setApiManager(fixture.manager.get());
        vm.setHistory(history.service.get());
        vm.setTool(QStringLiteral("sampleData"));
        for (const char *input : { "rows for jane.doe@example.com", "more rows" }) {
            vm.setInput(QString::fromUtf8(input));
            vm.send();
            QTRY_VERIFY(!vm.isProcessing());
        }
        QCOMPARE(conversationOf(fixture.fake->lastRequest().json()),
            (QStringList { "user: rows for [EMAIL_ADDRESS]", "assistant: ok", "user: more rows" }));
        const StoredMessage question = history.conversations().first().messages.first();
        QCOMPARE(question.text, QStringLiteral("rows for jane.doe@example.com"));
        QCOMPARE(question.sent, QStringLiteral("rows for [EMAIL_ADDRESS]"));
        QCOMPARE(history.conversations().first().tool, QStringLiteral("sampleData"));
    }

    void budgetDropsTheOldestFirst()
    {
        ChatMessageListModel list;
        const auto add = [&list](ChatMessageRecord::Role role, const QString &text, const QString &sent = {}) {
            ChatMessageRecord record;
            record.role = role;
            record.content = text;
            record.sent = sent;
            list.append(record);
        };
        using Role = ChatMessageRecord::Role;
        add(Role::user, QString(40, 'a'));
        add(Role::assistant, QString(40, 'b'));
        add(Role::user, QStringLiteral("failed question")); // no reply: never carried
        add(Role::user, QStringLiteral("shown"), QString(30, 'c')); // counted as sent
        add(Role::assistant, QString(30, 'd'));
        add(Role::user, QString(10, 'e'));
        add(Role::assistant, QString(10, 'f'));
        add(Role::user, QString(1000, 'n')); // the new message, never counted
        const auto texts = [&](qsizetype budget) {
            QStringList found;
            for (const ChatMessage &message : earlierMessages(list, list.count() - 1, budget)) {
                found.append(message.content.first().text.left(1));
            }
            return found;
        };
        QCOMPARE(texts(1000), (QStringList { "a", "b", "c", "d", "e", "f" }));
        QCOMPARE(texts(159), (QStringList { "c", "d", "e", "f" }));
        QCOMPARE(texts(80), (QStringList { "c", "d", "e", "f" }));
        QCOMPARE(texts(79), (QStringList { "e", "f" }));
        QCOMPARE(texts(19), QStringList());
        QCOMPARE(earlierMessages(list, 2).size(), 2);
    }

    void settingsTurnOffFollowUpsAndSaving()
    {
        ProviderFixture fixture;
        fixture.use(QStringLiteral("gpt-4o-mini"));
        fixture.fake->on("POST", "/v1/chat/completions", ScriptedReply::json(test::completion("A")));
        test::StoredHistory history;
        history.service->setSendEarlierMessages(false);
        history.service->setKeepHistory(false);
        AskMeAnythingViewModel vm;
        vm.setApiManager(fixture.manager.get());
        vm.setHistory(history.service.get());
        ask(vm, QStringLiteral("Q1"));
        ask(vm, QStringLiteral("Q2"));
        QCOMPARE(conversationOf(fixture.fake->lastRequest().json()),
            (QStringList { "system: You are a helpful assistant.", "user: Q2" }));
        QVERIFY(vm.conversationId().isEmpty());
        QCOMPARE(history.conversations().size(), 0);
        // The choices are kept for the next start.
        HistoryService again(history.path());
        QVERIFY(!again.keepHistory());
        QVERIFY(!again.sendEarlierMessages());
    }

    // A stored conversation opened in a fresh screen goes on where it stopped; regenerating
    // and editing replace the last exchange in the history too.
    void continuesRegeneratesAndEditsAStoredConversation()
    {
        ProviderFixture fixture;
        fixture.use(QStringLiteral("gpt-4o-mini"));
        for (const char *reply : { "A1", "A2", "A2 again", "A3" }) {
            fixture.fake->enqueue("POST", "/v1/chat/completions", ScriptedReply::json(test::completion(reply)));
        }
        test::StoredHistory history;
        QString id;
        {
            AskMeAnythingViewModel first;
            first.setApiManager(fixture.manager.get());
            first.setHistory(history.service.get());
            first.toggleSuggestion(QStringLiteral("Explain in simple words"));
            ask(first, QStringLiteral("Q1"));
            id = first.conversationId();
        }
        AskMeAnythingViewModel vm;
        vm.setApiManager(fixture.manager.get());
        vm.setHistory(history.service.get());
        QSignalSpy opened(&vm, &ChatToolViewModel::conversationOpened);
        vm.openConversation(id);
        QVERIFY(opened.wait());
        QCOMPARE(opened.first().first().toBool(), true);
        QCOMPARE(vm.messages()->count(), 2);
        ask(vm, QStringLiteral("Q2"));
        const QStringList carried = conversationOf(fixture.fake->lastRequest().json()).mid(1, 2);
        QVERIFY(carried.first().startsWith(QStringLiteral("user: ")) && carried.first().endsWith(QStringLiteral("Q1")));
        QVERIFY(carried.first().size() > QStringLiteral("user: Q1").size()); // the suggestion's prompt, as sent
        QCOMPARE(carried.last(), QStringLiteral("assistant: A1"));

        QVERIFY(vm.canRegenerate());
        vm.regenerate();
        QTRY_VERIFY(!vm.isProcessing());
        QCOMPARE(test::lastMessageText(fixture.fake->lastRequest().json()), QStringLiteral("Q2"));
        QCOMPARE(history.texts(), (QStringList { "Q1", "A1", "Q2", "A2 again" }));

        vm.editLastQuestion();
        QCOMPARE(vm.newMessage(), QStringLiteral("Q2"));
        QVERIFY(vm.isEditingLastQuestion());
        ask(vm, QStringLiteral("Q2, better"));
        QCOMPARE(conversationOf(fixture.fake->lastRequest().json()).size(), 4);
        QCOMPARE(history.texts(), (QStringList { "Q1", "A1", "Q2, better", "A3" }));
        QCOMPARE(history.conversations().size(), 1);
        QCOMPARE(vm.messages()->count(), 4);
    }

    void stoppedAndFailedRepliesKeepTheirText()
    {
        ProviderFixture fixture;
        fixture.use(QStringLiteral("gpt-4o-mini"));
        ScriptedReply slow = ScriptedReply::sse(
            { test::chunkLine(QStringLiteral("Partial ")), test::chunkLine(QStringLiteral("never")), test::doneLine },
            3000ms);
        fixture.fake->enqueue("POST", "/v1/chat/completions", slow);
        ScriptedReply cut = ScriptedReply::sse({ test::chunkLine(QStringLiteral("Cut ")) });
        cut.ending = ScriptedReply::Ending::CloseEarly;
        fixture.fake->enqueue("POST", "/v1/chat/completions", cut);
        test::StoredHistory history;
        DevToolViewModel vm;
        vm.setApiManager(fixture.manager.get());
        vm.setHistory(history.service.get());
        vm.setInput(QStringLiteral("x = 1 +"));
        vm.send();
        QTRY_COMPARE(vm.streamedContent(), QStringLiteral("Partial "));
        vm.stop();
        vm.setInput(QStringLiteral("again"));
        vm.send();
        QTRY_VERIFY(!vm.isProcessing());
        const QList<StoredMessage> stored = history.conversations().first().messages;
        QCOMPARE(stored.size(), 4);
        QCOMPARE(stored.at(1).text, QStringLiteral("Partial "));
        QCOMPARE(stored.at(1).ending, MessageEnding::stopped);
        QCOMPARE(stored.at(3).text, QStringLiteral("Cut "));
        QCOMPARE(stored.at(3).ending, MessageEnding::failed);
    }

    void generatorRunKeepsItsFormAndReopens()
    {
        ProviderFixture fixture;
        fixture.use(QStringLiteral("gpt-4o-mini"));
        fixture.fake->on("POST", "/v1/chat/completions",
            ScriptedReply::sse({ test::chunkLine(QStringLiteral("Wake up happy.")), test::doneLine }));
        test::StoredHistory history;
        GeneratorViewModel vm;
        vm.setApiManager(fixture.manager.get());
        vm.setHistory(history.service.get());
        vm.setFamily(QStringLiteral("customer-support"));
        vm.selectAssistant(vm.assistantTitles().first());
        const QString label = vm.fields().first().toMap().value(QStringLiteral("label")).toString();
        vm.setInput(label, QStringLiteral("Quokka order 4711"));
        vm.generate();
        QTRY_VERIFY(!vm.isGenerating());
        const ConversationRecord run = history.conversations().first();
        QCOMPARE(run.tool, QStringLiteral("generator"));
        QCOMPARE(run.generator->assistant, vm.selectedTitle());
        QCOMPARE(run.generator->fields.value(label), QStringLiteral("Quokka order 4711"));
        QCOMPARE(run.messages.first().text, label + QStringLiteral(": Quokka order 4711"));
        QCOMPARE(run.messages.first().sent, test::lastMessageText(fixture.fake->lastRequest().json()));
        QCOMPARE(run.messages.last().text, QStringLiteral("Wake up happy."));

        GeneratorViewModel reopened;
        reopened.setHistory(history.service.get());
        QSignalSpy opened(&reopened, &GeneratorViewModel::runOpened);
        reopened.openRun(run.uid);
        QVERIFY(opened.wait());
        QCOMPARE(reopened.family(), QStringLiteral("customer-support"));
        QCOMPARE(reopened.inputs().value(label), QStringLiteral("Quokka order 4711"));
        QCOMPARE(reopened.output(), QStringLiteral("Wake up happy."));
    }
};

ZENTRIK_TEST(FollowUpTest)

#include "tst_followups.moc"
