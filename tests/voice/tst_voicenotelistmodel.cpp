#include <QtTest>

#include <QAbstractItemModelTester>

#include "support/testregistry.h"
#include "voice/voicenotelistmodel.h"

using namespace zentrik;

Q_DECLARE_METATYPE(QList<VoiceNote>)

namespace {

QList<VoiceNote> notes(const QString &ids, const QString &edited = {})
{
    QList<VoiceNote> list;
    for (const QChar id : ids) {
        const QString title = edited.contains(id) ? QStringLiteral("edited ") + id : QStringLiteral("note ") + id;
        list.append({ QString(id), title, QStringLiteral("text"), QDateTime::fromSecsSinceEpoch(1700000000, Qt::UTC) });
    }
    return list;
}

} // namespace

// The screen's list only tells views what changed.
class TestVoiceNoteListModel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void reportsOnlyWhatChanged_data()
    {
        QTest::addColumn<QList<VoiceNote>>("before");
        QTest::addColumn<QList<VoiceNote>>("after");
        QTest::addColumn<int>("inserted");
        QTest::addColumn<int>("removed");
        QTest::addColumn<int>("changed");
        QTest::addColumn<bool>("reset");

        QTest::newRow("new note in front") << notes("abc") << notes("nabc") << 1 << 0 << 0 << false;
        QTest::newRow("middle deleted") << notes("abc") << notes("ac") << 0 << 1 << 0 << false;
        QTest::newRow("one edited") << notes("abc") << notes("abc", "b") << 0 << 0 << 1 << false;
        QTest::newRow("search narrows") << notes("abcde") << notes("bd") << 0 << 3 << 0 << false;
        QTest::newRow("search widens") << notes("bd") << notes("abcde") << 3 << 0 << 0 << false;
        QTest::newRow("all gone") << notes("abc") << notes("") << 0 << 3 << 0 << false;
        QTest::newRow("from empty") << notes("") << notes("ab") << 2 << 0 << 0 << false;
        QTest::newRow("unchanged") << notes("abc") << notes("abc") << 0 << 0 << 0 << false;
        QTest::newRow("reordered") << notes("abc") << notes("cab") << 0 << 0 << 0 << true;
        QTest::newRow("duplicate id") << notes("ab") << notes("abb") << 0 << 0 << 0 << true;
    }

    void reportsOnlyWhatChanged()
    {
        QFETCH(QList<VoiceNote>, before);
        QFETCH(QList<VoiceNote>, after);
        QFETCH(int, inserted);
        QFETCH(int, removed);
        QFETCH(int, changed);
        QFETCH(bool, reset);

        VoiceNoteListModel model;
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        model.setNotes(before);
        int insertedRows = 0;
        int removedRows = 0;
        connect(&model, &QAbstractItemModel::rowsInserted, this,
            [&](const QModelIndex &, int first, int last) { insertedRows += last - first + 1; });
        connect(&model, &QAbstractItemModel::rowsRemoved, this,
            [&](const QModelIndex &, int first, int last) { removedRows += last - first + 1; });
        QSignalSpy dataChanged(&model, &QAbstractItemModel::dataChanged);
        QSignalSpy resets(&model, &QAbstractItemModel::modelReset);
        QSignalSpy counts(&model, &VoiceNoteListModel::countChanged);

        model.setNotes(after);
        QCOMPARE(model.notes(), after);
        QCOMPARE(resets.count(), reset ? 1 : 0);
        if (!reset) {
            QCOMPARE(insertedRows, inserted);
            QCOMPARE(removedRows, removed);
            QCOMPARE(dataChanged.count(), changed);
        }
        QCOMPARE(counts.count(), before.size() == after.size() ? 0 : 1);
        for (int row = 0; row < after.size(); ++row) {
            const QModelIndex index = model.index(row);
            QCOMPARE(index.data(VoiceNoteListModel::IdRole).toString(), after.at(row).id);
            QCOMPARE(index.data(VoiceNoteListModel::TitleRole).toString(), after.at(row).title);
        }
    }
};

ZENTRIK_TEST(TestVoiceNoteListModel)
#include "tst_voicenotelistmodel.moc"
