#include "app/clipboardcopier.h"
#include "app/replydocument.h"
#include "support/testregistry.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QSignalSpy>
#include <QtTest>

using namespace zentrik;

// The copy button's state and the reply document's once-per-frame updates.
class CopyAndReplyTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void copiedStateComesAndGoes()
    {
        ClipboardCopier copier;
        QCOMPARE(copier.label(), QStringLiteral("Copy to Clipboard"));
        QCOMPARE(copier.symbol(), QStringLiteral("doc.on.doc"));
        copier.setResetDelay(150);
        QSignalSpy changed(&copier, &ClipboardCopier::isCopiedChanged);
        copier.setText(QStringLiteral("reply"));
        copier.copy();
        QVERIFY(copier.isCopied());
        QCOMPARE(copier.label(), QStringLiteral("Copied!"));
        QCOMPARE(copier.symbol(), QStringLiteral("checkmark"));
        // A second copy keeps the notice up without flickering it off and on.
        QTest::qWait(100);
        copier.copy();
        QTest::qWait(100);
        QVERIFY(copier.isCopied());
        QCOMPARE(changed.count(), 1);
        QTRY_VERIFY(!copier.isCopied());
        QCOMPARE(changed.count(), 2);
        QCOMPARE(copier.label(), QStringLiteral("Copy to Clipboard"));
    }

    void rapidChangesReachTheBlocksAtMostOncePerFrame()
    {
        ReplyDocument document;
        document.setFrameInterval(200);
        QSignalSpy blockUpdates(document.blocks(), &MarkdownModel::textChanged);
        QString text;
        for (int i = 0; i < 100; ++i) {
            text += QStringLiteral("word%1 ").arg(i);
            document.setSource(text);
        }
        // The first change shows at once; the other 99 wait for the frame.
        QCOMPARE(blockUpdates.count(), 1);
        QCOMPARE(document.blocks()->text(), QStringLiteral("word0 "));
        QCOMPARE(document.source(), text);
        QTRY_COMPARE(document.blocks()->text(), text);
        QCOMPARE(blockUpdates.count(), 2);
        QCOMPARE(document.blocks()->count(), 1);
    }

    void flushAppliesThePendingText()
    {
        ReplyDocument document;
        document.setFrameInterval(10000);
        document.setSource(QStringLiteral("# Title"));
        document.setSource(QStringLiteral("# Title\n\nBody with a [link](http://a.b)."));
        QCOMPARE(document.blocks()->count(), 1);
        document.flush();
        QCOMPARE(document.blocks()->count(), 2);
        QCOMPARE(document.blocks()->data(document.blocks()->index(0), MarkdownModel::TypeRole).toString(),
            QStringLiteral("heading"));
        // Starting over with another reply replaces the blocks.
        document.setSource(QString());
        document.flush();
        QCOMPARE(document.blocks()->count(), 0);
    }
};
ZENTRIK_TEST(CopyAndReplyTest)

#include "tst_copyandreply.moc"
