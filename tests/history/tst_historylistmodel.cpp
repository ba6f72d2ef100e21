#include "historyfixture.h"

#include "history/historylistmodel.h"
#include "history/historyservice.h"
#include "support/testregistry.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QtTest>

using namespace zentrik;

namespace {

QStringList ids(const HistoryListModel &model)
{
    QStringList found;
    for (int row = 0; row < model.rowCount(); ++row) {
        found.append(model.data(model.index(row), HistoryListModel::IdRole).toString());
    }
    return found;
}

void saveAll(HistoryService &service, const ConversationRecord &record)
{
    for (const StoredMessage &message : record.messages) {
        ConversationRecord header = record;
        header.messages.clear();
        header.updatedMs = message.timeMs;
        service.saveMessage(header, message);
    }
}

} // namespace

// The History screen's list over a real store through the worker thread, checked by
// QAbstractItemModelTester through every change: new conversations, one moving to the top,
// search, rename, delete and undo.
class HistoryListModelTest : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;

private Q_SLOTS:
    void init() { qputenv("ZENTRIK_CONFIG_DIR", m_dir.path().toUtf8()); }
    void cleanup() { qunsetenv("ZENTRIK_CONFIG_DIR"); }

    void followsTheHistoryThroughEveryChange()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("history.sqlite"));
        HistoryService service(path);
        HistoryListModel model;
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        model.setHistory(&service);
        service.start();
        QList<ConversationRecord> varied = historyfixture::variedConversations();
        // The picture the image run refers to, kept where the history keeps pictures.
        QDir().mkpath(dir.filePath(QStringLiteral("history-pictures")));
        const QString picture = dir.filePath(QStringLiteral("history-pictures/img-1.png"));
        QFile(picture).open(QIODevice::WriteOnly);
        varied.last().image->picturePath = picture;
        for (const ConversationRecord &record : varied) {
            saveAll(service, record);
        }
        QTRY_COMPARE(ids(model), (QStringList { "img-1", "gen-1", "pdf-1", "chat-1" }));
        QCOMPARE(
            model.data(model.index(1), HistoryListModel::ToolNameRole).toString(), QStringLiteral("Slogan Generator"));
        QCOMPARE(model.data(model.index(3), HistoryListModel::PreviewRole).toString(),
            QStringLiteral("Plan a trip for [PERSON]"));

        // A new message moves its conversation to the top.
        ConversationRecord chat = varied.first();
        chat.messages = { historyfixture::message(
            QStringLiteral("m-5"), MessageRole::user, QStringLiteral("Thanks"), QDateTime::currentMSecsSinceEpoch()) };
        saveAll(service, chat);
        QTRY_COMPARE(ids(model), (QStringList { "chat-1", "img-1", "gen-1", "pdf-1" }));
        QCOMPARE(model.data(model.index(0), HistoryListModel::SectionRole).toString(), QStringLiteral("Today"));
        QCOMPARE(model.data(model.index(0), HistoryListModel::MessageCountRole).toInt(), 5);

        model.setSearchText(QStringLiteral("alfama"));
        QTRY_COMPARE(ids(model), QStringList { "chat-1" });
        QVERIFY(model.data(model.index(0), HistoryListModel::SnippetRole)
                    .toString()
                    .contains(QStringLiteral("<b>Alfama</b>")));
        model.setSearchText(QString());
        QTRY_COMPARE(model.count(), 4);

        model.rename(QStringLiteral("pdf-1"), QStringLiteral("  Contract   deadline "));
        QCOMPARE(
            model.data(model.index(3), HistoryListModel::TitleRole).toString(), QStringLiteral("Contract deadline"));

        // Deleting takes the row away at once; undo brings it back under its number.
        const qint64 number = model.data(model.index(2), HistoryListModel::NumberRole).toLongLong();
        model.remove(QStringLiteral("gen-1"));
        QCOMPARE(ids(model), (QStringList { "chat-1", "img-1", "pdf-1" }));
        QVERIFY(model.canUndo());
        QCOMPARE(model.undoText(), QStringLiteral("Deleted \u201CSlogan Generator: Quokka Coffee\u201D"));
        model.undoRemove();
        QVERIFY(!model.canUndo());
        QTRY_COMPARE(ids(model), (QStringList { "chat-1", "img-1", "gen-1", "pdf-1" }));
        QCOMPARE(model.data(model.index(2), HistoryListModel::NumberRole).toLongLong(), number);

        // Once the undo bar goes, so does the image run's kept picture.
        model.remove(QStringLiteral("img-1"));
        model.dismissUndo();
        QVERIFY(service.waitForIdle());
        QVERIFY(!QFileInfo::exists(picture));
        QTRY_COMPARE(ids(model), (QStringList { "chat-1", "gen-1", "pdf-1" }));

        // A tool's own list.
        HistoryListModel pdfs;
        QAbstractItemModelTester pdfTester(&pdfs, QAbstractItemModelTester::FailureReportingMode::QtTest);
        pdfs.setTool(historytool::pdfChat);
        pdfs.setHistory(&service);
        QTRY_COMPARE(ids(pdfs), QStringList { "pdf-1" });
        QCOMPARE(pdfs.data(pdfs.index(0), HistoryListModel::TitleRole).toString(), QStringLiteral("Contract deadline"));

        QSignalSpy finished(&service, &HistoryService::operationFinished);
        service.deleteAll();
        QVERIFY(finished.wait());
        QCOMPARE(finished.first().at(1).toString(), QStringLiteral("Deleted 3 conversation(s)."));
        QTRY_COMPARE(model.count(), 0);
        QTRY_COMPARE(pdfs.count(), 0);
    }

    void sectionsByDay_data()
    {
        QTest::addColumn<int>("daysAgo");
        QTest::addColumn<QString>("section");
        QTest::newRow("today") << 0 << "Today";
        QTest::newRow("yesterday") << 1 << "Yesterday";
        QTest::newRow("two days") << 2 << "Previous 7 days";
        QTest::newRow("a week") << 7 << "Previous 7 days";
        QTest::newRow("eight days") << 8 << "Older";
        QTest::newRow("clock ahead") << -1 << "Today";
    }

    void sectionsByDay()
    {
        QFETCH(int, daysAgo);
        QFETCH(QString, section);
        const QDate today(2024, 3, 1); // the day after a leap day
        QCOMPARE(HistoryListModel::sectionFor(QDateTime(today.addDays(-daysAgo), QTime(23, 59)), today), section);
    }

    void snippetsAreEscapedAroundTheMatches()
    {
        const QString snippet = QStringLiteral("<script>") + SearchHit::matchStart + QStringLiteral("a&b")
            + SearchHit::matchEnd + QStringLiteral(" \"x\"");
        QCOMPARE(
            HistoryListModel::highlightedHtml(snippet), QStringLiteral("&lt;script&gt;<b>a&amp;b</b> &quot;x&quot;"));
    }
};

ZENTRIK_TEST(HistoryListModelTest)

#include "tst_historylistmodel.moc"
