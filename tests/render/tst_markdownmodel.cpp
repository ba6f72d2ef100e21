#include "blockdump.h"
#include "samplereplies.h"

#include "render/markdownmodel.h"
#include "render/markdownrenderer.h"

#include "support/testregistry.h"

#include <QAbstractItemModelTester>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTest>

using namespace zentrik;

namespace {

// Records what a view would be told, in a compact form: "insert 1-1", "remove 2-3",
// "change 0 text,items", "reset".
class UpdateLog : public QObject
{
public:
    explicit UpdateLog(QAbstractItemModel *model)
    {
        const QHash<int, QByteArray> names = model->roleNames();
        connect(model, &QAbstractItemModel::rowsInserted, this, [this](const QModelIndex &, int first, int last) {
            entries.append(QStringLiteral("insert %1-%2").arg(first).arg(last));
        });
        connect(model, &QAbstractItemModel::rowsRemoved, this, [this](const QModelIndex &, int first, int last) {
            entries.append(QStringLiteral("remove %1-%2").arg(first).arg(last));
        });
        connect(model, &QAbstractItemModel::modelReset, this, [this] { entries.append(QStringLiteral("reset")); });
        connect(model, &QAbstractItemModel::dataChanged, this,
            [this, names](const QModelIndex &topLeft, const QModelIndex &bottomRight, const QList<int> &roles) {
                QStringList roleList;
                for (const int role : roles) {
                    roleList.append(QString::fromLatin1(names.value(role)));
                }
                const QString rows = topLeft.row() == bottomRight.row()
                    ? QString::number(topLeft.row())
                    : QStringLiteral("%1-%2").arg(topLeft.row()).arg(bottomRight.row());
                entries.append(QStringLiteral("change %1 %2").arg(rows, roleList.join(QLatin1Char(','))));
            });
    }

    QStringList entries;
};

} // namespace

class MarkdownModelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void streamingUnderModelTester_data()
    {
        QTest::addColumn<QString>("reply");
        for (const auto &[name, reply] : zentrik::test::sampleReplies()) {
            QTest::newRow(name.constData()) << reply;
        }
    }

    void streamingUnderModelTester()
    {
        QFETCH(QString, reply);
        MarkdownModel model;
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        QSignalSpy countSpy(&model, &MarkdownModel::countChanged);
        QRandomGenerator random(4242);
        int lastCount = 0;
        int countChanges = 0;
        for (qsizetype at = 0; at < reply.size();) {
            const qsizetype size = qMin<qsizetype>(random.bounded(1, 30), reply.size() - at);
            model.appendText(reply.sliced(at, size));
            at += size;
            if (model.rowCount() != lastCount) {
                ++countChanges;
                lastCount = model.rowCount();
            }
            // What the view holds is what a fresh render of the text so far gives.
            QString sofar = reply.left(at);
            if (sofar.back().isHighSurrogate()) {
                sofar.chop(1);
            }
            QCOMPARE(model.blocks(), MarkdownRenderer::render(sofar));
        }
        QCOMPARE(model.text(), reply);
        QCOMPARE(model.count(), int(MarkdownRenderer::render(reply).size()));
        QCOMPARE(countSpy.count(), countChanges);
    }

    void updates_data()
    {
        QTest::addColumn<QString>("start");
        QTest::addColumn<QString>("piece");
        QTest::addColumn<QStringList>("log");
        const auto row = [](const char *name, const QString &start, const QString &piece, const QStringList &log) {
            QTest::newRow(name) << start << piece << log;
        };

        row("first piece", "", "Hello", QStringList { "insert 0-0" });
        row("growing paragraph", "Hello", " **world**", QStringList { "change 0 text" });
        row("new block", "Hello\n\n", "# Title", QStringList { "insert 1-1" });
        row("setext underline", "Title\n", "===", QStringList { "change 0 type,level" });
        row("code language completes", "```", "py\nx = 1", QStringList { "change 0 text,language" });
        row("table row added", "a|b\n-|-\n1|2", "\n3|4", QStringList { "change 0 tableRows" });
        row("paragraph becomes a table", "a|b\n",
            ":-|-:", QStringList { "change 0 type,text,tableHeader,columnAlignments" });
        row("rule taken back into a paragraph", "x\n***", "b", QStringList { "change 0 text", "remove 1-1" });
    }

    void updates()
    {
        QFETCH(QString, start);
        QFETCH(QString, piece);
        QFETCH(QStringList, log);
        MarkdownModel model;
        model.appendText(start);
        const UpdateLog updates(&model);
        model.appendText(piece);
        QCOMPARE(updates.entries, log);
    }

    void roleData()
    {
        MarkdownModel model;
        model.setText(QStringLiteral("## Title\n\n- [x] done\n  1. sub\n\n```rust\nfn main() {}\n```\n\n"
                                     "| a | b |\n|:-:|--:|\n| *1* | 2 |\n\n---\n\n> q"));
        QCOMPARE(model.rowCount(), 6);
        const auto value = [&model](int row, MarkdownModel::Role role) { return model.data(model.index(row), role); };

        QStringList types;
        for (int row = 0; row < model.rowCount(); ++row) {
            types.append(value(row, MarkdownModel::TypeRole).toString());
        }
        QCOMPARE(types, (QStringList { "heading", "bulletList", "code", "table", "rule", "quote" }));

        QCOMPARE(value(0, MarkdownModel::LevelRole).toInt(), 2);
        QCOMPARE(value(0, MarkdownModel::TextRole).toString(), QStringLiteral("Title"));

        const QVariantList items = value(1, MarkdownModel::ItemsRole).toList();
        QCOMPARE(items.size(), 2);
        const QVariantMap done = items.at(0).toMap();
        QCOMPARE(done.value("text").toString(), QStringLiteral("done"));
        QCOMPARE(done.value("task").toString(), QStringLiteral("checked"));
        QCOMPARE(done.value("depth").toInt(), 0);
        const QVariantMap sub = items.at(1).toMap();
        QCOMPARE(sub.value("marker").toString(), QStringLiteral("1."));
        QCOMPARE(sub.value("depth").toInt(), 1);
        QCOMPARE(sub.value("task").toString(), QString());

        QCOMPARE(value(2, MarkdownModel::LanguageRole).toString(), QStringLiteral("rust"));
        QCOMPARE(value(2, MarkdownModel::TextRole).toString(), QStringLiteral("fn main() {}"));

        QCOMPARE(value(3, MarkdownModel::TableHeaderRole).toStringList(), (QStringList { "a", "b" }));
        const QVariantList rows = value(3, MarkdownModel::TableRowsRole).toList();
        QCOMPARE(rows.size(), 1);
        QCOMPARE(rows.first().toStringList(), (QStringList { "<i>1</i>", "2" }));
        QCOMPARE(value(3, MarkdownModel::ColumnAlignmentsRole).toList(),
            (QVariantList { int(Qt::AlignHCenter), int(Qt::AlignRight) }));

        QCOMPARE(value(5, MarkdownModel::TextRole).toString(), QStringLiteral("q"));
        QVERIFY(!model.data(model.index(6), MarkdownModel::TextRole).isValid());
        QVERIFY(model.roleNames().values().contains("tableRows"));
    }

    void setTextAndClear()
    {
        MarkdownModel model;
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        QSignalSpy textSpy(&model, &MarkdownModel::textChanged);
        QSignalSpy countSpy(&model, &MarkdownModel::countChanged);

        model.setText(QStringLiteral("one\n\ntwo"));
        QCOMPARE(model.count(), 2);
        QCOMPARE(textSpy.count(), 1);
        QCOMPARE(countSpy.count(), 1);

        // The same text again changes nothing.
        model.setText(QStringLiteral("one\n\ntwo"));
        QCOMPARE(textSpy.count(), 1);

        // A longer text that starts with the current one only updates the growing row.
        {
            const UpdateLog updates(&model);
            model.setText(QStringLiteral("one\n\ntwo three"));
            QCOMPARE(updates.entries, QStringList { "change 1 text" });
        }
        QCOMPARE(textSpy.count(), 2);

        // Any other text replaces the rows.
        model.setText(QStringLiteral("# other"));
        QCOMPARE(test::dump(model.blocks()), QStringLiteral("heading1: other"));
        QCOMPARE(model.text(), QStringLiteral("# other"));
        QCOMPARE(countSpy.count(), 2);

        model.clear();
        QCOMPARE(model.rowCount(), 0);
        QCOMPARE(model.text(), QString());
        QCOMPARE(textSpy.count(), 4);
        model.clear();
        QCOMPARE(textSpy.count(), 4);
    }
};

ZENTRIK_TEST(MarkdownModelTest)

#include "tst_markdownmodel.moc"
