#include "app/theme.h"
#include "privacy/piialertviewmodel.h"
#include "support/testregistry.h"
#include "windowharness.h"

#include <QClipboard>
#include <QFontInfo>
#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QtTest>

using namespace zentrik;
using namespace zentrik::test;

namespace {

// A window holding one component under test, as a tool screen would hold it.
const QByteArray privacyHost = R"(
import QtQuick
import QtQuick.Controls
import Zentrik
ApplicationWindow {
    width: 900; height: 700; visible: true
    property alias alert: alertModel
    property int originals: 0
    property int redacted: 0
    PiiAlertViewModel { id: alertModel; objectName: "alertModel" }
    PiiAlertView { alert: alertModel; onSendOriginal: originals++; onSendRedacted: redacted++ }
}
)";

const QByteArray replyHost = R"(
import QtQuick
import QtQuick.Controls
import Zentrik
ApplicationWindow {
    width: 900; height: 1200; visible: true
    property alias reply: replyView
    ScrollView {
        anchors.fill: parent
        contentWidth: availableWidth
        ReplyView { id: replyView; width: parent.width; showAssistantSymbol: true }
        CopyButton { objectName: "replyCopy"; y: replyView.height; copyText: replyView.text }
    }
}
)";

// A file dialog whose folder module is missing, as on a system without it.
const QByteArray filePickerHost = R"(
import QtQuick
import QtQuick.Controls
import Zentrik
ApplicationWindow {
    width: 800; height: 600; visible: true
    property int accepted: 0
    FilePicker {
        objectName: "picker"
        title: "Open a PDF"
        requiredModule: "Zentrik.Absent.Module"
        onAccepted: accepted++
    }
}
)";

const QString sampleReply = QStringLiteral(
    "## Plan\n\nA **bold** start.\n\n- one\n- two\n  1. nested\n\n> quoted\n\n```python\nprint(\"hi\")\n```\n\n"
    "| Name | Qty |\n|:-----|----:|\n| pens | 3 |\n\n---\n\nThe end.");

} // namespace

// The reusable pieces the tool screens are built from, each in a window of its own.
class ComponentsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_config = std::make_unique<ScopedConfigDir>();
        m_engine = std::make_unique<QQmlEngine>();
        prepareEngine(*m_engine);
    }

    void cleanup()
    {
        m_window.reset();
        m_engine.reset();
        m_config.reset();
    }

    void privacyDialogChoice_data()
    {
        QTest::addColumn<QString>("button");
        QTest::addColumn<int>("originals");
        QTest::addColumn<int>("redacted");
        QTest::newRow("send original") << "sendOriginalButton" << 1 << 0;
        QTest::newRow("send redacted") << "sendRedactedButton" << 0 << 1;
        QTest::newRow("escape sends nothing") << QString() << 0 << 0;
    }

    void privacyDialogChoice()
    {
        QFETCH(QString, button);
        QFETCH(int, originals);
        QFETCH(int, redacted);
        QVERIFY(load(privacyHost));
        auto *alert = qobject_cast<PiiAlertViewModel *>(findObject(m_window.get(), QStringLiteral("alertModel")));
        QVERIFY(alert);
        QQuickItem *dialogItem = nullptr;

        QVERIFY(!alert->checkForPII(QStringLiteral("What is the capital of France?")));
        QVERIFY(waitForFrame(m_window.get()));
        QVERIFY(!visibleTexts(m_window.get()).contains(QStringLiteral("Personal Information Detected")));

        const QString message = QStringLiteral("Please write to jane.doe@example.com today");
        QVERIFY(alert->checkForPII(message));
        QTRY_VERIFY(visibleTexts(m_window.get()).contains(QStringLiteral("Personal Information Detected")));
        const QStringList texts = visibleTexts(m_window.get());
        for (const QString &expected :
            { QStringLiteral("We've detected and redacted some potentially sensitive information in your message."),
                QStringLiteral("Original Message"), QStringLiteral("Redacted Message"), message,
                QStringLiteral("Please write to [EMAIL_ADDRESS] today"), QStringLiteral("Send Original"),
                QStringLiteral("Send Redacted") }) {
            QVERIFY2(texts.contains(expected), qPrintable(expected));
        }
        // The original comes before the redacted copy.
        dialogItem = findItem(m_window.get(), QStringLiteral("originalMessageBlock"));
        QQuickItem *redactedBlock = findItem(m_window.get(), QStringLiteral("redactedMessageBlock"));
        QVERIFY(dialogItem && redactedBlock);
        QVERIFY(dialogItem->mapToScene({ 0, 0 }).y() < redactedBlock->mapToScene({ 0, 0 }).y());

        if (button.isEmpty()) {
            QTest::keyClick(m_window.get(), Qt::Key_Escape);
        } else {
            QVERIFY(click(findItem(m_window.get(), button)));
        }
        QTRY_VERIFY(!alert->showAlert());
        QTRY_VERIFY(!visibleTexts(m_window.get()).contains(QStringLiteral("Personal Information Detected")));
        QCOMPARE(m_window->property("originals").toInt(), originals);
        QCOMPARE(m_window->property("redacted").toInt(), redacted);
        // Both texts stay for the tool to send.
        QCOMPARE(alert->originalMessage(), message);
        QCOMPARE(alert->redactedMessage(), QStringLiteral("Please write to [EMAIL_ADDRESS] today"));

        // The next positive check opens the dialog again.
        QVERIFY(alert->checkForPII(QStringLiteral("Which user can pass the login?")));
        QTRY_VERIFY(visibleTexts(m_window.get()).contains(QStringLiteral("Which user can pass the login?")));
    }

    void fileDialogWithoutItsModuleExplainsInsteadOfOpening()
    {
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("File dialogs are unavailable")));
        QVERIFY(load(filePickerHost));
        QObject *picker = findObject(m_window.get(), QStringLiteral("picker"));
        QVERIFY(picker);
        QVERIFY(QMetaObject::invokeMethod(picker, "open"));
        QObject *problem = findObject(m_window.get(), QStringLiteral("picker.problem"));
        QVERIFY(problem);
        QTRY_VERIFY(problem->property("opened").toBool());
        const QString text = visibleTexts(m_window.get()).join(QLatin1Char('\n'));
        QVERIFY2(text.contains(QLatin1String("Zentrik.Absent.Module")), qPrintable(text));
        QVERIFY2(text.contains(QLatin1String("qml6-module-zentrik-absent-module")), qPrintable(text));
        QVERIFY(!findObject(m_window.get(), QStringLiteral("picker.dialog")));
        // OK has the focus: Return dismisses the message, and a second try says it again.
        QTest::keyClick(m_window.get(), Qt::Key_Return);
        QTRY_VERIFY(!problem->property("visible").toBool());
        QVERIFY(QMetaObject::invokeMethod(picker, "open"));
        QTRY_VERIFY(problem->property("opened").toBool());
        QCOMPARE(m_window->property("accepted").toInt(), 0);
    }

    void replyShowsEveryKindOfBlock()
    {
        QVERIFY(load(replyHost));
        QObject *reply = m_window->property("reply").value<QObject *>();
        QVERIFY(reply);
        reply->setProperty("text", sampleReply);
        const QStringList expected
            = { "heading", "paragraph", "bulletList", "quote", "code", "table", "rule", "paragraph" };
        QTRY_COMPARE(blockTypes(), expected);
        // A rule further down is a block of its own; the divider is for the pattern only.
        QVERIFY(!findItem(m_window.get(), QStringLiteral("replyRule"))->isVisible());
        const QStringList texts = visibleTexts(m_window.get());
        QVERIFY(texts.contains(QStringLiteral("print(\"hi\")")));
        QVERIFY(texts.contains(QStringLiteral("python")));
        QVERIFY(texts.join(QLatin1Char('\n')).contains(QStringLiteral("pens")));

        // Code is drawn in the monospace font.
        QQuickItem *code = findItem(m_window.get(), QStringLiteral("codeText"));
        QVERIFY(code);
        const QFont font = code->property("font").value<QFont>();
        QCOMPARE(font.family(), Theme().monospaceFontFamily());
        QVERIFY(QFontInfo(font).fixedPitch());

        // The code block's own button copies the code as it stands; the reply's copies the
        // cleaned-up reply.
        QVERIFY(click(findItem(m_window.get(), QStringLiteral("codeCopyButton"))));
        QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("print(\"hi\")"));
        QVERIFY(click(findItem(m_window.get(), QStringLiteral("replyCopy"))));
        const QString copied = QGuiApplication::clipboard()->text();
        QVERIFY(copied.startsWith(QStringLiteral("Plan\n\nA bold start.")));
        QVERIFY(!copied.contains(QLatin1Char('*')));
        QTRY_VERIFY(visibleTexts(m_window.get()).contains(QStringLiteral("Copied!")));

        reply->setProperty("text", QStringLiteral("Sign here: ____"));
        QTRY_VERIFY(findItem(m_window.get(), QStringLiteral("replyRule"))->isVisible());
    }

    void replyGrowsWhileStreaming()
    {
        QVERIFY(load(replyHost));
        QObject *reply = m_window->property("reply").value<QObject *>();
        QString text;
        for (const QString &piece : { QStringLiteral("# Ti"), QStringLiteral("tle\n\nFirst"), QStringLiteral(" para"),
                 QStringLiteral("graph.\n\n```\ncode"), QStringLiteral("\n```\n") }) {
            text += piece;
            reply->setProperty("text", text);
            QVERIFY(waitForFrame(m_window.get())); // a piece a frame, as a fast stream arrives
        }
        QTRY_COMPARE(blockTypes(), QStringList({ "heading", "paragraph", "code" }));
        QVERIFY(visibleTexts(m_window.get()).contains(QStringLiteral("First paragraph.")));
        QVERIFY(!findItem(m_window.get(), QStringLiteral("replyRule"))->isVisible());
    }

private:
    bool load(const QByteArray &source)
    {
        QQmlComponent component(m_engine.get());
        component.setData(source, QUrl(QStringLiteral("qrc:/test/Host.qml")));
        m_window.reset(qobject_cast<QQuickWindow *>(component.create()));
        if (!m_window) {
            qWarning() << component.errors();
            return false;
        }
        return QTest::qWaitForWindowExposed(m_window.get());
    }

    QStringList blockTypes() const
    {
        QStringList types;
        QQuickItem *column = findItem(m_window.get(), QStringLiteral("replyBlocks"));
        if (!column) {
            return types;
        }
        QList<QQuickItem *> children = column->childItems();
        std::sort(children.begin(), children.end(), [](QQuickItem *a, QQuickItem *b) { return a->y() < b->y(); });
        for (QQuickItem *child : children) {
            const QString name = child->objectName();
            if (name.startsWith(QStringLiteral("replyBlock:")) && child->isVisible()) {
                types.append(name.mid(11));
            }
        }
        return types;
    }

    std::unique_ptr<ScopedConfigDir> m_config;
    std::unique_ptr<QQmlEngine> m_engine;
    std::unique_ptr<QQuickWindow> m_window;
};
ZENTRIK_TEST(ComponentsTest)

#include "tst_components.moc"
