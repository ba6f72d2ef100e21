#include "app/licensegate.h"
#include "app/zentrikapp.h"
#include "model/apimanager.h"
#include "support/fakeprovider.h"
#include "support/replies.h"
#include "support/testregistry.h"
#include "tools/chatmessagelistmodel.h"
#include "tools/devtoolviewmodel.h"
#include "windowharness.h"

#include <QQuickItem>
#include <QQuickWindow>
#include <QtTest>

using namespace zentrik;
using namespace zentrik::test;

// The Code Debugger and the Sample Data Generator run the same model and key check as the
// chats before they send: typed and sent from the window, a refused selection shows the
// check's own message, keeps the input and sends nothing; a passed one goes out.
class DevToolCheckTest : public QObject
{
    Q_OBJECT

    std::unique_ptr<WindowTestEnvironment> m_environment;
    FakeProvider *m_fake = nullptr;

    struct Case
    {
        QString model;
        bool withKey = false;
        QString refusal; // empty: the check passes
    };

    static QList<Case> cases()
    {
        // Without keys first: the window's keys can be given for a run but not taken back.
        // One model of each provider stands for the rest; the catalogue's own test covers them all.
        return { { QString(), false, QStringLiteral("Please select a text model in Settings.") },
            { QStringLiteral("gpt-4o"), false,
                QStringLiteral("Invalid model selected. Please choose a valid model in Settings.") },
            { QStringLiteral("gpt-4o-mini"), false,
                QStringLiteral("OpenAI API key is missing. Please add it in Settings.") },
            { QStringLiteral("claude-3-haiku-20240307"), false,
                QStringLiteral("Claude API key is missing. Please add it in Settings.") },
            { QStringLiteral("mistralai/mistral-7b-instruct:free"), false, QString() },
            { QStringLiteral("gpt-4o-mini"), true, QString() },
            { QStringLiteral("claude-3-haiku-20240307"), true, QString() } };
    }

private Q_SLOTS:
    void init()
    {
        m_environment = std::make_unique<WindowTestEnvironment>();
        m_fake = &m_environment->fake();
        m_fake->on("POST", "/v1/chat/completions",
            ScriptedReply::sse({ test::chunkLine(QStringLiteral("Fixed.")), test::doneLine }));
        m_fake->on("POST", "/v1/messages", ScriptedReply::json(test::anthropicReply(QStringLiteral("Fixed."))));
    }

    void cleanup()
    {
        m_fake = nullptr;
        m_environment.reset();
    }

    void checksTheModelBeforeSending_data()
    {
        QTest::addColumn<QString>("entry");
        QTest::addColumn<QString>("viewName");
        QTest::newRow("Code Debugger") << QStringLiteral("Code Debugger") << QStringLiteral("codeDebuggerView");
        QTest::newRow("Sample Data Generator")
            << QStringLiteral("Sample Data Generator") << QStringLiteral("sampleDataView");
    }

    void checksTheModelBeforeSending()
    {
        QFETCH(QString, entry);
        QFETCH(QString, viewName);
        const auto app = startApp();
        QVERIFY(app);
        QQuickWindow *window = app->window();
        // From its card under Tech, as a user finds it.
        QVERIFY(click(findItem(window, QStringLiteral("sidebar:Tech"))));
        QVERIFY(click(findItem(window, QStringLiteral("agentCard:") + entry)));
        QTRY_VERIFY(findItem(window, viewName));
        auto *tool = qobject_cast<DevToolViewModel *>(findObject(window, QStringLiteral("devToolViewModel")));
        QVERIFY(tool && tool->apiManager());
        APIManager *manager = tool->apiManager();

        for (const Case &row : cases()) {
            const QByteArray name
                = (row.model + (row.withKey ? QStringLiteral(" with key") : QStringLiteral(" without key"))).toUtf8();
            manager->setSelectedTextModel(row.model);
            if (row.withKey) {
                manager->overrideUserKeys(QStringLiteral("sk-window"), QStringLiteral("sk-ant-window"), QString());
            }
            const int requestsBefore = m_fake->requestCount();
            const int messagesBefore = tool->messages()->count();

            QQuickItem *input = findItem(window, QStringLiteral("chatInputField"));
            QVERIFY2(click(input), name.constData());
            QTest::keySequence(window, QKeySequence::SelectAll);
            typeText(window, QStringLiteral("x = 1 +"));
            QVERIFY2(click(findItem(window, QStringLiteral("sendButton"))), name.constData());

            if (!row.refusal.isEmpty()) {
                QTRY_VERIFY2(visibleTexts(window).contains(row.refusal), name.constData());
                QCOMPARE(tool->messages()->count(), messagesBefore);
                QCOMPARE(tool->input(), QStringLiteral("x = 1 +"));
                QVERIFY2(!tool->isProcessing(), name.constData());
                QCOMPARE(m_fake->requestCount(), requestsBefore);
                continue;
            }
            // Past the check: the message is shown as sent and the reply (or the request's own
            // failure, for a free model in a build without its key) follows.
            QTRY_VERIFY2(tool->messages()->count() > messagesBefore, name.constData());
            QTRY_VERIFY2_WITH_TIMEOUT(!tool->isProcessing(), name.constData(), 10000);
            if (!row.model.endsWith(QLatin1String(":free"))) {
                QCOMPARE(m_fake->requestCount(), requestsBefore + 1);
                QCOMPARE(m_fake->lastRequest().json().object().value(QLatin1String("model")).toString(), row.model);
                QCOMPARE(tool->messages()->at(tool->messages()->count() - 1).content, QStringLiteral("Fixed."));
            }
        }
    }
};

ZENTRIK_TEST(DevToolCheckTest)
#include "tst_devtoolcheck.moc"
