#include "historyfixture.h"

#include "history/historyformat.h"
#include "history/historyschema.h"
#include "support/testregistry.h"

#include <QProcess>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QtTest>

using namespace zentrik;

namespace {

// Runs statements on a file through a connection of its own, as an older release or
// another program would have left it.
void writeRaw(const QString &path, const QStringList &statements)
{
    const QString name = QStringLiteral("raw-%1").arg(quintptr(&statements));
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(path);
        QVERIFY(db.open());
        QSqlQuery query(db);
        for (const QString &statement : statements) {
            QVERIFY2(query.exec(statement), qPrintable(statement + QLatin1String(": ") + query.lastError().text()));
        }
    }
    QSqlDatabase::removeDatabase(name);
}

// The first value of a query on a file, through a connection of its own.
QVariant rawValue(const QString &path, const QString &sql)
{
    const QString name = QStringLiteral("raw-value");
    QVariant value;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(path);
        QSqlQuery query(db);
        if (db.open() && query.exec(sql) && query.next()) {
            value = query.value(0);
        }
    }
    QSqlDatabase::removeDatabase(name);
    return value;
}

QByteArray fileBytes(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QStringList foundUids(const QList<SearchHit> &hits)
{
    QStringList uids;
    for (const SearchHit &hit : hits) {
        uids.append(hit.conversation.uid);
    }
    return uids;
}

} // namespace

// The store on real SQLite files: what it keeps, how it opens old, damaged and newer files,
// search, export and import, and two processes writing at once.
class HistoryStoreTest : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    [[nodiscard]] QString path(const QString &name = QStringLiteral("history.sqlite")) const
    {
        return m_dir.filePath(name);
    }

private Q_SLOTS:
    void init()
    {
        for (const QString &name : QDir(m_dir.path()).entryList(QDir::Files)) {
            QFile::remove(m_dir.filePath(name));
        }
    }

    void keepsEveryKindOfConversation()
    {
        HistoryStore store(path());
        QVERIFY(store.open());
        const QList<ConversationRecord> original = historyfixture::variedConversations();
        for (const ConversationRecord &record : original) {
            QVERIFY2(historyfixture::save(store, record), qPrintable(store.error()));
        }
        const QList<ConversationRecord> loaded = store.loadAll();
        QCOMPARE(loaded.size(), original.size());
        for (int i = 0; i < original.size(); ++i) {
            QVERIFY2(loaded.at(i).sameContent(original.at(i)), qPrintable(original.at(i).uid));
        }
        // Newest first; a tool's list holds only its own; lists carry counts and a first line.
        const QList<ConversationRecord> all = store.list();
        QCOMPARE(all.first().uid, QStringLiteral("img-1"));
        QCOMPARE(all.last().uid, QStringLiteral("chat-1"));
        QCOMPARE(all.last().messageCount, 4);
        QCOMPARE(all.last().preview, QStringLiteral("Plan a trip for [PERSON]"));
        const QList<ConversationRecord> pdfs = store.list(historytool::pdfChat);
        QCOMPARE(pdfs.size(), 1);
        QCOMPARE(store.load(QString::number(pdfs.first().number))->uid, QStringLiteral("pdf-1"));
        QCOMPARE(store.load(QStringLiteral("gen-"))->uid, QStringLiteral("gen-1"));
        QVERIFY(!store.load(QStringLiteral("9999")));
        QVERIFY(store.error().contains(QStringLiteral("No conversation 9999")));

        // A reply saved again (stopped, then whole) is one message with the last text.
        ConversationRecord header = original.first();
        header.messages.clear();
        StoredMessage reply = original.first().messages.last();
        reply.text = QStringLiteral("Alfama, then Belém, then Sintra");
        reply.ending = MessageEnding::complete;
        QVERIFY(store.saveMessage(header, reply));
        const std::optional<ConversationRecord> chat = store.load(QStringLiteral("chat-1"));
        QCOMPARE(chat->messages.size(), 4);
        QCOMPARE(chat->messages.last(), reply);
    }

    void migratesAnOlderFormatAndKeepsACopy()
    {
        // What the first release wrote: its schema, one conversation, user_version 1.
        QStringList statements = historyschema::migrations().at(0);
        statements << QStringLiteral("INSERT INTO conversations (uid, tool, title, created_at, updated_at) VALUES "
                                     "('old-1', 'askMeAnything', 'Old question', 1000, 2000)")
                   << QStringLiteral("INSERT INTO messages (uid, conversation_id, role, content, created_at) VALUES "
                                     "('old-m1', 1, 'user', 'Which heron nests here?', 1000)")
                   << QStringLiteral("PRAGMA user_version = 1");
        writeRaw(path(), statements);

        HistoryStore store(path());
        QVERIFY2(store.open(), qPrintable(store.error()));
        QCOMPARE(rawValue(path(), QStringLiteral("PRAGMA user_version")).toInt(), historyschema::currentVersion());
        QCOMPARE(foundUids(store.search(QStringLiteral("heron"))), QStringList { QStringLiteral("old-1") });
        QCOMPARE(foundUids(store.search(QStringLiteral("old question"))), QStringList { QStringLiteral("old-1") });

        // The copy is the file as it was before the migration.
        const QString backup = store.database().backupPath();
        QVERIFY(QFileInfo(backup).fileName().startsWith(QStringLiteral("history.sqlite.v1-backup")));
        QCOMPARE(rawValue(backup, QStringLiteral("PRAGMA user_version")).toInt(), 1);
        QCOMPARE(rawValue(backup, QStringLiteral("SELECT content FROM messages")).toString(),
            QStringLiteral("Which heron nests here?"));
        QVERIFY(
            !rawValue(backup, QStringLiteral("SELECT name FROM sqlite_master WHERE name = 'messages_fts'")).isValid());
    }

    void unreadableFileIsMovedAsideNeverDeleted_data()
    {
        QTest::addColumn<QString>("damage");
        QTest::newRow("not a database") << "text";
        QTest::newRow("damaged pages") << "pages";
    }

    void unreadableFileIsMovedAsideNeverDeleted()
    {
        QFETCH(QString, damage);
        if (damage == QLatin1String("text")) {
            QFile file(path());
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write(QByteArray("These are my notes, not a database.\n").repeated(200));
        } else {
            QStringList statements { QStringLiteral("PRAGMA page_size = 1024"),
                QStringLiteral("CREATE TABLE filler (id INTEGER PRIMARY KEY, text TEXT)") };
            for (int i = 0; i < 200; ++i) {
                statements
                    << QStringLiteral("INSERT INTO filler (text) VALUES ('%1')").arg(QString(100, QChar('a' + i % 26)));
            }
            writeRaw(path(), statements);
            QFile file(path());
            QVERIFY(file.open(QIODevice::ReadWrite));
            QVERIFY(file.seek(5 * 1024));
            file.write(QByteArray(3 * 1024, '\xff'));
        }
        const QByteArray damaged = fileBytes(path());

        HistoryStore store(path());
        QVERIFY2(store.open(), qPrintable(store.error()));
        QVERIFY(store.notice().contains(QStringLiteral("history.sqlite.unreadable-")));
        const QStringList kept = QDir(m_dir.path()).entryList({ QStringLiteral("history.sqlite.unreadable-*") });
        QCOMPARE(kept.size(), 1);
        QCOMPARE(fileBytes(m_dir.filePath(kept.first())), damaged);
        // The new history works.
        QVERIFY(historyfixture::save(store, historyfixture::variedConversations().first()));
        QCOMPARE(store.count(), 1);
    }

    void newerFormatIsLeftAlone()
    {
        writeRaw(path(), { QStringLiteral("CREATE TABLE future (x)"), QStringLiteral("PRAGMA user_version = 99") });
        const QByteArray before = fileBytes(path());
        HistoryStore store(path());
        QVERIFY(!store.open());
        QVERIFY(store.error().contains(QStringLiteral("newer Zentrik")));
        QCOMPARE(fileBytes(path()), before);
        QCOMPARE(QDir(m_dir.path()).entryList({ QStringLiteral("history.sqlite.*") }), QStringList());
    }

    void searchFindsEveryKindOfText_data()
    {
        QTest::addColumn<QString>("query");
        QTest::addColumn<QStringList>("found");
        QTest::newRow("user text") << "shorter" << QStringList { "chat-1" };
        QTest::newRow("assistant text") << "belém" << QStringList { "chat-1" };
        QTest::newRow("without accents") << "belem" << QStringList { "chat-1" };
        QTest::newRow("as typed before redaction") << "Sanchez" << QStringList { "chat-1" };
        QTest::newRow("generator field") << "quokka" << QStringList { "gen-1" };
        QTest::newRow("image prompt") << "lighthouse dusk" << QStringList { "img-1" };
        QTest::newRow("title only") << "lisbon" << QStringList { "chat-1" };
        QTest::newRow("word being typed") << "Alf" << QStringList { "chat-1" };
        QTest::newRow("all words needed") << "alfama quokka" << QStringList {};
        QTest::newRow("no match") << "madrid" << QStringList {};
        for (const char *hostile : { "\"", "*", "AND OR NOT", "(", "NEAR(a b", "content:x", "a\"b", "-", "^", "" }) {
            QTest::newRow(hostile) << QString::fromLatin1(hostile) << QStringList {};
        }
    }

    void searchFindsEveryKindOfText()
    {
        QFETCH(QString, query);
        QFETCH(QStringList, found);
        HistoryStore store(path());
        QVERIFY(store.open());
        for (const ConversationRecord &record : historyfixture::variedConversations()) {
            QVERIFY(historyfixture::save(store, record));
        }
        const QList<SearchHit> hits = store.search(query);
        QCOMPARE(foundUids(hits), found);
        QVERIFY2(store.error().isEmpty(), qPrintable(store.error()));
        for (const SearchHit &hit : hits) {
            QVERIFY2(hit.snippet.contains(SearchHit::matchStart), qPrintable(hit.snippet));
        }
    }

    void searchRanksAndMarksMatches()
    {
        HistoryStore store(path());
        QVERIFY(store.open());
        using historyfixture::message;
        ConversationRecord once = historyfixture::conversation(QStringLiteral("once"), historytool::debugger, 1000);
        once.messages = { message(QStringLiteral("o1"), MessageRole::user,
            QStringLiteral("A long question about many things, among them a segfault, and more words after it."),
            1000) };
        ConversationRecord often = historyfixture::conversation(QStringLiteral("often"), historytool::debugger, 500);
        often.messages = { message(QStringLiteral("f1"), MessageRole::user, QStringLiteral("segfault segfault"), 500),
            message(QStringLiteral("f2"), MessageRole::assistant, QStringLiteral("The segfault comes from"), 600) };
        QVERIFY(historyfixture::save(store, once));
        QVERIFY(historyfixture::save(store, often));
        const QList<SearchHit> hits = store.search(QStringLiteral("segfault"));
        QCOMPARE(foundUids(hits), (QStringList { QStringLiteral("often"), QStringLiteral("once") }));
        const QString marked = QString(SearchHit::matchStart) + QStringLiteral("segfault") + SearchHit::matchEnd;
        QVERIFY(hits.last().snippet.contains(marked));
        QCOMPARE(foundUids(store.search(QStringLiteral("segfault"), historytool::askMeAnything)), QStringList());
    }

    // A word in more messages than the ranking reads is ranked among its newest matches.
    void veryCommonWordsRankTheNewestMatches()
    {
        HistoryStore store(path());
        QVERIFY(store.open());
        QList<ConversationRecord> conversations;
        for (int c = 0; c < 30; ++c) {
            ConversationRecord record = historyfixture::conversation(
                QStringLiteral("c%1").arg(c, 2, 10, QLatin1Char('0')), historytool::askMeAnything, 1000 + c);
            record.title = QStringLiteral("Conversation %1").arg(c);
            for (int m = 0; m < 80; ++m) {
                record.messages.append(historyfixture::message(QStringLiteral("c%1-%2").arg(c).arg(m),
                    m % 2 ? MessageRole::assistant : MessageRole::user, QStringLiteral("a common word"), 1000 + c));
            }
            conversations.append(record);
        }
        QVERIFY(store.import(conversations));
        const QStringList found = foundUids(store.search(QStringLiteral("common"), {}, 100));
        QCOMPARE(found.size(), 25);
        QVERIFY(!found.contains(QStringLiteral("c04")) && found.contains(QStringLiteral("c05")));
    }

    void deletedConversationLeavesSearchAndCanReturn()
    {
        HistoryStore store(path());
        QVERIFY(store.open());
        for (const ConversationRecord &record : historyfixture::variedConversations()) {
            QVERIFY(historyfixture::save(store, record));
        }
        const std::optional<ConversationRecord> taken = store.take(QStringLiteral("gen-1"));
        QVERIFY(taken);
        QCOMPARE(foundUids(store.search(QStringLiteral("quokka"))), QStringList());
        QCOMPARE(foundUids(store.search(QStringLiteral("slogan"))), QStringList());
        QCOMPARE(store.count(), 3);
        QVERIFY(store.import({ *taken }, true));
        QCOMPARE(store.load(QStringLiteral("gen-1"))->number, taken->number);
        QCOMPARE(foundUids(store.search(QStringLiteral("quokka"))), QStringList { QStringLiteral("gen-1") });
        QCOMPARE(store.removeAll(), 4);
        QCOMPARE(foundUids(store.search(QStringLiteral("alfama"))), QStringList());
    }

    void exportAndImportRoundTripExactly()
    {
        HistoryStore first(path(QStringLiteral("first.sqlite")));
        QVERIFY(first.open());
        for (const ConversationRecord &record : historyfixture::variedConversations()) {
            QVERIFY(historyfixture::save(first, record));
        }
        const QByteArray exported = historyformat::toJson(first.loadAll());

        HistoryStore second(path(QStringLiteral("second.sqlite")));
        QVERIFY(second.open());
        for (int round = 0; round < 2; ++round) {
            auto parsed = historyformat::fromJson(exported);
            QVERIFY(std::holds_alternative<QList<ConversationRecord>>(parsed));
            const auto counts = second.import(std::get<QList<ConversationRecord>>(parsed));
            QVERIFY2(counts, qPrintable(second.error()));
            QCOMPARE(counts->conversations, round == 0 ? 4 : 0);
            QCOMPARE(counts->messages, round == 0 ? 9 : 0);
            QCOMPARE(counts->present, round == 0 ? 0 : 4);
        }
        QCOMPARE(historyformat::toJson(second.loadAll()), exported);
        const QString markdown = historyformat::toMarkdown(second.loadAll());
        QVERIFY(markdown.contains(QStringLiteral("# Trip to Lisbon")));
        QVERIFY(markdown.contains(QStringLiteral("*(stopped)*")));
    }

    void refusesFilesItCannotImport_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<QString>("problem");
        const QByteArray head = R"({"format":"zentrik-history","version":1,"conversations":[)";
        const QByteArray good
            = R"({"id":"c","tool":"debugger","title":"t","created":"2024-05-01T10:00:00.000Z","updated":"2024-05-01T10:00:00.000Z","messages":[]})";
        QTest::newRow("not JSON") << QByteArray("{\"format\":") << "not JSON";
        QTest::newRow("another program's") << QByteArray(R"({"conversations":[]})") << "not a Zentrik history";
        QTest::newRow("newer version") << QByteArray(R"({"format":"zentrik-history","version":2})") << "version 2";
        QTest::newRow("bad time") << head + QByteArray(good).replace("2024-05-01T10:00:00.000Z", "yesterday") + "]}"
                                  << "conversation 1: 'created' is not a time";
        QTest::newRow("unknown tool") << head + good + "," + QByteArray(good).replace("debugger", "spreadsheet") + "]}"
                                      << "conversation 2";
        QTest::newRow("bad role") << head
                + QByteArray(good).replace(
                    "[]", R"([{"id":"m","role":"system","text":"x","time":"2024-05-01T10:00:00.000Z"}])")
                + "]}"
                                  << "message 1: 'role'";
    }

    void refusesFilesItCannotImport()
    {
        QFETCH(QByteArray, json);
        QFETCH(QString, problem);
        const auto parsed = historyformat::fromJson(json);
        QVERIFY(std::holds_alternative<QString>(parsed));
        QVERIFY2(std::get<QString>(parsed).contains(problem), qPrintable(std::get<QString>(parsed)));
    }

    // Two processes (the window and zentrik-cli, say) each save messages one by one into the
    // same file at the same time; every message of both is there afterwards.
    void twoProcessesWritingAtOnceLoseNothing()
    {
        constexpr int perWriter = 400;
        std::vector<std::unique_ptr<QProcess>> writers;
        for (const QString &name : { QStringLiteral("left"), QStringLiteral("right") }) {
            auto process = std::make_unique<QProcess>();
            QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
            env.insert(QStringLiteral("HISTORY_TEST_DB"), path());
            env.insert(QStringLiteral("HISTORY_TEST_WRITER"), name);
            env.insert(QStringLiteral("HISTORY_TEST_COUNT"), QString::number(perWriter));
            process->setProcessEnvironment(env);
            process->setProcessChannelMode(QProcess::MergedChannels);
            process->start(QCoreApplication::applicationFilePath(),
                { QStringLiteral("-class"), QStringLiteral("HistoryWriterChild") });
            writers.push_back(std::move(process));
        }
        for (const auto &process : writers) {
            QVERIFY(process->waitForFinished(120000));
            QVERIFY2(process->exitCode() == 0, process->readAll().constData());
        }
        HistoryStore store(path());
        QVERIFY(store.open());
        QCOMPARE(store.count(), 2);
        for (const ConversationRecord &record : store.loadAll()) {
            QCOMPARE(record.messages.size(), perWriter);
        }
    }
};

ZENTRIK_TEST(HistoryStoreTest)

// The child half of twoProcessesWritingAtOnceLoseNothing: one writer.
class HistoryWriterChild : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void writeMessages()
    {
        HistoryStore store(qEnvironmentVariable("HISTORY_TEST_DB"));
        QVERIFY2(store.open(), qPrintable(store.error()));
        const QString name = qEnvironmentVariable("HISTORY_TEST_WRITER");
        const ConversationRecord header = historyfixture::conversation(name, historytool::askMeAnything, 1000);
        const int count = qEnvironmentVariableIntValue("HISTORY_TEST_COUNT");
        for (int i = 0; i < count; ++i) {
            const StoredMessage message = historyfixture::message(QStringLiteral("%1-%2").arg(name).arg(i),
                i % 2 ? MessageRole::assistant : MessageRole::user, QStringLiteral("message %1").arg(i), 1000 + i);
            QVERIFY2(store.saveMessage(header, message), qPrintable(store.error()));
        }
    }
};

ZENTRIK_CHILD_TEST(HistoryWriterChild)

#include "tst_historystore.moc"
