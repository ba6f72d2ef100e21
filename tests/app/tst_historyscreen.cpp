#include "app/zentrikapp.h"
#include "history/historyfixture.h"
#include "history/historystore.h"
#include "model/apimanager.h"
#include "support/environment.h"
#include "support/fakeprovider.h"
#include "support/replies.h"
#include "support/testregistry.h"
#include "tools/askmeanythingviewmodel.h"
#include "tools/generatorviewmodel.h"
#include "windowharness.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QQuickItem>
#include <QQuickWindow>
#include <QtTest>

using namespace zentrik;
using namespace zentrik::test;

// The History screen in the real window, over a history written before the window starts,
// driven by mouse and keyboard: a found conversation opens in its tool and a follow-up goes
// out carrying it; a deletion is undone; Settings deletes everything after saying how much,
// and with saving off writes nothing new.
class HistoryScreenTest : public QObject
{
    Q_OBJECT

    std::unique_ptr<WindowTestEnvironment> m_environment;
    std::unique_ptr<ZentrikApp> m_app;
    QQuickWindow *m_window = nullptr;

    static constexpr qint64 dayMs = 24 * 3600 * 1000;

    // Three conversations, one under each of Today, Previous 7 days and Older.
    static void seed()
    {
        struct Seed
        {
            const char *uid;
            const QString &tool;
            const char *question;
            const char *reply;
            qint64 ageMs;
        };
        const qint64 now = QDateTime::currentMSecsSinceEpoch();
        HistoryStore store;
        QVERIFY(store.open());
        for (const Seed &seed : { Seed { "trip", historytool::askMeAnything, "Plan a trip to Lisbon",
                                      "Day one: the Alfama quarter.", 2000 },
                 Seed { "loop", historytool::debugger, "Why does this loop never end?", "The counter never grows.",
                     3 * dayMs },
                 Seed { "rows", historytool::sampleData, "Ten customer rows as CSV", "id,name\n1,Ada", 40 * dayMs } }) {
            const qint64 time = now - seed.ageMs;
            ConversationRecord record = historyfixture::conversation(QLatin1String(seed.uid), seed.tool, time);
            record.title = QLatin1String(seed.question);
            record.messages = {
                historyfixture::message(record.uid + QLatin1Char('q'), MessageRole::user, record.title, time),
                historyfixture::message(
                    record.uid + QLatin1Char('r'), MessageRole::assistant, QLatin1String(seed.reply), time + 1000),
            };
            QVERIFY(historyfixture::save(store, record));
        }
    }

    // What another process reading the file sees: the messages of one conversation, or the
    // number of conversations when `uid` is empty.
    static int stored(const QString &uid = {})
    {
        HistoryStore store;
        if (!store.open()) {
            return -1;
        }
        if (uid.isEmpty()) {
            return store.count().value_or(-1);
        }
        const std::optional<ConversationRecord> record = store.load(uid);
        return record ? int(record->messages.size()) : 0;
    }

    QQuickItem *row(const QString &title) const { return findItem(m_window, QStringLiteral("historyRow:") + title); }

    void openHistory()
    {
        QVERIFY(click(findItem(m_window, QStringLiteral("sidebar:History"))));
        QTRY_VERIFY(row(QStringLiteral("Plan a trip to Lisbon")));
    }

private Q_SLOTS:
    void init()
    {
        m_environment = std::make_unique<WindowTestEnvironment>();
        seed();
        m_app = startApp();
        QVERIFY(m_app);
        m_window = m_app->window();
    }

    void cleanup()
    {
        m_app.reset();
        m_environment.reset();
    }

    void aFoundConversationOpensInItsToolAndGoesOn()
    {
        m_environment->fake().on(
            "POST", "/v1/chat/completions", ScriptedReply::json(test::completion(QStringLiteral("Day two: Belém."))));
        openHistory();
        const QString texts = visibleTexts(m_window).join(QLatin1Char('\n'));
        for (const char *heading : { "Today", "Previous 7 days", "Older" }) {
            QVERIFY2(texts.contains(QLatin1String(heading)), heading);
        }
        saveScreenshots(m_window, QStringLiteral("history-light"));
        QQuickItem *darkMode = findItem(m_window, QStringLiteral("darkModeSwitch"));
        QVERIFY(click(darkMode));
        saveScreenshots(m_window, QStringLiteral("history-dark"));

        // The reply's words are found and shown in bold.
        QVERIFY(click(findItem(m_window, QStringLiteral("historySearchField"))));
        typeText(m_window, QStringLiteral("alfama"));
        QTRY_VERIFY(!row(QStringLiteral("Why does this loop never end?")));
        QQuickItem *found = row(QStringLiteral("Plan a trip to Lisbon"));
        QVERIFY(found);
        QTRY_VERIFY(findItem(found, QStringLiteral("historyRowText"))
                        ->property("text")
                        .toString()
                        .contains(QLatin1String("<b>Alfama</b>")));
        saveScreenshots(m_window, QStringLiteral("history-search-dark"));
        QVERIFY(click(darkMode));
        saveScreenshots(m_window, QStringLiteral("history-search-light"));
        QVERIFY(click(findItem(m_window, QStringLiteral("historySearchField"))));

        // Down into the results, Return opens the conversation in Ask Me Anything.
        QTest::keyClick(m_window, Qt::Key_Down);
        QTest::keyClick(m_window, Qt::Key_Return);
        QTRY_VERIFY(findItem(m_window, QStringLiteral("askMeAnythingView")));
        auto *chat
            = qobject_cast<AskMeAnythingViewModel *>(findObject(m_window, QStringLiteral("askMeAnythingViewModel")));
        QVERIFY(chat);
        QTRY_COMPARE(chat->messages()->rowCount(), 2);
        chat->apiManager()->setSelectedTextModel(QStringLiteral("gpt-3.5-turbo-1106"));
        chat->apiManager()->overrideUserKeys(QStringLiteral("sk-window-test"), QString(), QString());

        QVERIFY(click(findItem(m_window, QStringLiteral("chatInputField"))));
        typeText(m_window, QStringLiteral("and day two"));
        QTest::keyClick(m_window, Qt::Key_Return);
        QTRY_COMPARE_WITH_TIMEOUT(chat->messages()->rowCount(), 4, 10000);

        QStringList sent;
        const QJsonArray messages = m_environment->fake().lastRequest().json().object().value("messages").toArray();
        for (const QJsonValue &message : messages) {
            if (message.toObject().value("role").toString() != QLatin1String("system")) {
                sent.append(message.toObject().value("content").toString());
            }
        }
        QCOMPARE(sent,
            QStringList({ QStringLiteral("Plan a trip to Lisbon"), QStringLiteral("Day one: the Alfama quarter."),
                QStringLiteral("and day two") }));
        QVERIFY(click(findItem(m_window, QStringLiteral("recentConversationsButton"))));
        QTRY_VERIFY(findItem(m_window, QStringLiteral("recentConversation:Plan a trip to Lisbon")));
        saveScreenshots(m_window, QStringLiteral("history-continued-light"));
        // The follow-up and its reply join the stored conversation rather than start another.
        QTRY_COMPARE(stored(QStringLiteral("trip")), 4);
        QCOMPARE(stored(), 3);
    }

    // A generator run opens on its family's screen with its assistant, fields and reply.
    void aGeneratorRunOpensWithItsForm()
    {
        const qint64 now = QDateTime::currentMSecsSinceEpoch();
        ConversationRecord run = historyfixture::conversation(QStringLiteral("slogans"), historytool::generator, now);
        run.title = QStringLiteral("Slogan Generator: Acme Boots");
        run.generator = GeneratorRun { QStringLiteral("marketing"), QStringLiteral("Slogan Generator"),
            { { QStringLiteral("Brand/Product Name"), QStringLiteral("Acme Boots") } } };
        run.messages = { historyfixture::message(QStringLiteral("s1"), MessageRole::user,
                             QStringLiteral("Brand/Product Name: Acme Boots"), now),
            historyfixture::message(
                QStringLiteral("s2"), MessageRole::assistant, QStringLiteral("Climb higher."), now) };
        HistoryStore store;
        QVERIFY(store.open());
        QVERIFY(historyfixture::save(store, run));

        openHistory();
        QTRY_VERIFY(row(run.title));
        QVERIFY(click(row(run.title)));
        QTRY_VERIFY(findItem(m_window, QStringLiteral("generatorView")));
        auto *generator
            = qobject_cast<GeneratorViewModel *>(findObject(m_window, QStringLiteral("generatorViewModel")));
        QVERIFY(generator);
        QTRY_COMPARE(generator->output(), QStringLiteral("Climb higher."));
        QCOMPARE(generator->selectedTitle(), QStringLiteral("Slogan Generator"));
        QCOMPARE(generator->inputsMap().value(QStringLiteral("Brand/Product Name")).toString(),
            QStringLiteral("Acme Boots"));
    }

    void deleteIsUndone_data()
    {
        QTest::addColumn<bool>("keyboard");
        QTest::newRow("mouse") << false;
        QTest::newRow("keyboard") << true;
    }

    void deleteIsUndone()
    {
        QFETCH(bool, keyboard);
        openHistory();
        const QString title = QStringLiteral("Plan a trip to Lisbon");
        if (keyboard) {
            QTest::keyClick(m_window, Qt::Key_F, Qt::ControlModifier);
            QTest::keyClick(m_window, Qt::Key_Down); // from the search field to the newest row
            QTest::keyClick(m_window, Qt::Key_Delete);
        } else {
            QVERIFY(click(findItem(row(title), QStringLiteral("deleteButton"))));
        }
        QTRY_VERIFY(!row(title));
        QQuickItem *undoBar = findItem(m_window, QStringLiteral("undoBar"));
        QTRY_VERIFY(undoBar->isVisible());
        QVERIFY(visibleTexts(m_window).join(QLatin1Char('\n')).contains(title));
        QTRY_COMPARE(stored(), 2);

        if (keyboard) {
            QTest::keySequence(m_window, QKeySequence::Undo);
        } else {
            QVERIFY(click(findItem(m_window, QStringLiteral("undoButton"))));
        }
        QTRY_VERIFY(row(title));
        QTRY_VERIFY(!undoBar->isVisible());
        QTRY_COMPARE(stored(QStringLiteral("trip")), 2);
        QCOMPARE(stored(), 3);
    }

    // F2 on the current row edits its title in place; Return keeps it, in the file too.
    void renamesFromTheKeyboard()
    {
        openHistory();
        QTest::keyClick(m_window, Qt::Key_F, Qt::ControlModifier);
        QTest::keyClick(m_window, Qt::Key_Down);
        QTest::keyClick(m_window, Qt::Key_F2);
        QTRY_VERIFY(
            findItem(row(QStringLiteral("Plan a trip to Lisbon")), QStringLiteral("renameField"))->hasActiveFocus());
        QTest::keyClick(m_window, Qt::Key_A, Qt::ControlModifier);
        typeText(m_window, QStringLiteral("Lisbon in May"));
        QTest::keyClick(m_window, Qt::Key_Return);
        QTRY_VERIFY(row(QStringLiteral("Lisbon in May")));
        HistoryStore store;
        QVERIFY(store.open());
        QTRY_COMPARE(store.load(QStringLiteral("trip"))->title, QStringLiteral("Lisbon in May"));
    }

    // A history file that is no database is moved aside once the window shows, and the
    // window says so in one line; the History screen starts empty.
    void anUnreadableHistoryIsMovedAsideAndSaidSo()
    {
        m_app.reset();
        const QString path = HistoryStore::defaultPath();
        for (const QString &companion : { QStringLiteral("-wal"), QStringLiteral("-shm") }) {
            QFile::remove(path + companion);
        }
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        QVERIFY(file.write(QByteArray(4096, 'x')) == 4096);
        file.close();
        m_app = startApp();
        QVERIFY(m_app);
        m_window = m_app->window();

        QTRY_VERIFY(findItem(m_window, QStringLiteral("historyNoticeBar"))->isVisible());
        QVERIFY(findItem(m_window, QStringLiteral("historyNoticeText"))
                    ->property("text")
                    .toString()
                    .startsWith(QLatin1String("Conversation history could not be read")));
        const QStringList aside = QFileInfo(path).dir().entryList({ QStringLiteral("history.sqlite.unreadable-*") });
        QCOMPARE(aside.size(), 1);
        QVERIFY(click(findItem(m_window, QStringLiteral("sidebar:History"))));
        QTRY_VERIFY(findItem(m_window, QStringLiteral("historyEmpty"))->isVisible());
        saveScreenshots(m_window, QStringLiteral("history-notice-light"));
        QVERIFY(click(findItem(m_window, QStringLiteral("dismissHistoryNotice"))));
        QTRY_VERIFY(!findItem(m_window, QStringLiteral("historyNoticeBar"))->isVisible());
    }

    // Export from a row: the format first, then the file dialog offers a name in the home
    // folder (no documents folder here); the JSON written is the import format.
    void exportsAConversationAsJson()
    {
        QTemporaryDir home;
        ScopedEnvironment environment;
        environment.set("HOME", home.path());
        openHistory();
        QVERIFY(click(findItem(row(QStringLiteral("Plan a trip to Lisbon")), QStringLiteral("exportButton"))));
        QTRY_VERIFY(findObject(m_window, QStringLiteral("historyExportDialog"))->property("visible").toBool());
        QVERIFY(click(findItem(m_window, QStringLiteral("jsonChoice"))));
        saveScreenshots(m_window, QStringLiteral("history-export-light"));
        QVERIFY(click(findItem(m_window, QStringLiteral("chooseExportFileButton"))));
        QQuickItem *fileDialog = nullptr;
        QTRY_VERIFY((fileDialog = openFileDialog(m_window)) != nullptr);
        QQuickItem *accept = nullptr;
        for (QObject *object : allObjects(fileDialog)) {
            auto *item = qobject_cast<QQuickItem *>(object);
            if (item && item->isVisible() && item->inherits("QQuickAbstractButton")
                && item->property("text").toString() == QLatin1String("Export")) {
                accept = item;
            }
        }
        QVERIFY(click(accept));

        QFile file(home.filePath(QStringLiteral("plan-a-trip-to-lisbon.json")));
        QTRY_VERIFY(file.exists());
        QTRY_VERIFY(findItem(m_window, QStringLiteral("historyStatus"))->isVisible());
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QJsonObject exported = QJsonDocument::fromJson(file.readAll()).object();
        QVERIFY(exported.contains(QLatin1String("version")));
        const QJsonArray conversations = exported.value("conversations").toArray();
        QCOMPARE(conversations.size(), 1);
        QCOMPARE(conversations.first().toObject().value("messages").toArray().size(), 2);
    }

    void settingsDeleteEverythingAndStopSaving()
    {
        QVERIFY(click(findItem(m_window, QStringLiteral("sidebar:Settings"))));
        QTRY_VERIFY(findItem(m_window, QStringLiteral("deleteAllHistoryButton")));
        QVERIFY(click(findItem(m_window, QStringLiteral("deleteAllHistoryButton"))));
        QTRY_VERIFY(findItem(m_window, QStringLiteral("deleteAllHistoryText"))
                        ->property("text")
                        .toString()
                        .startsWith(QLatin1String("All 3 stored conversations")));
        saveScreenshots(m_window, QStringLiteral("history-delete-all-light"));
        // Cancel has the focus: Return keeps everything.
        QTest::keyClick(m_window, Qt::Key_Return);
        QTRY_VERIFY(!findObject(m_window, QStringLiteral("deleteAllHistoryDialog"))->property("visible").toBool());
        QCOMPARE(stored(), 3);
        QVERIFY(click(findItem(m_window, QStringLiteral("deleteAllHistoryButton"))));
        QVERIFY(click(findItem(m_window, QStringLiteral("confirmDeleteAllButton"))));
        QTRY_COMPARE(stored(), 0);

        QVERIFY(click(findItem(m_window, QStringLiteral("keepHistorySwitch"))));
        QVERIFY(click(findItem(m_window, QStringLiteral("sidebar:Ask Me Anything"))));
        QTRY_VERIFY(findItem(m_window, QStringLiteral("chatInputField")));
        auto *chat
            = qobject_cast<AskMeAnythingViewModel *>(findObject(m_window, QStringLiteral("askMeAnythingViewModel")));
        chat->apiManager()->setSelectedTextModel(QStringLiteral("gpt-3.5-turbo-1106"));
        chat->apiManager()->overrideUserKeys(QStringLiteral("sk-window-test"), QString(), QString());
        m_environment->fake().on(
            "POST", "/v1/chat/completions", ScriptedReply::json(test::completion(QStringLiteral("Noted."))));
        QVERIFY(click(findItem(m_window, QStringLiteral("chatInputField"))));
        typeText(m_window, QStringLiteral("remember nothing"));
        QTest::keyClick(m_window, Qt::Key_Return);
        QTRY_COMPARE_WITH_TIMEOUT(chat->messages()->rowCount(), 2, 10000);
        QVERIFY(chat->history()->waitForIdle());
        QCOMPARE(stored(), 0);
    }
};

ZENTRIK_TEST(HistoryScreenTest)
#include "tst_historyscreen.moc"
