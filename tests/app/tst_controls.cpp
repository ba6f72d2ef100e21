#include "app/licensegate.h"
#include "app/sidebarmodel.h"
#include "app/zentrikapp.h"
#include "model/apimanager.h"
#include "settings/preferences.h"
#include "support/fakeprovider.h"
#include "support/replies.h"
#include "support/testregistry.h"
#include "tools/assistantcatalogue.h"
#include "tools/generatorviewmodel.h"
#include "voice/voicenote.h"
#include "voice/voicenotemanager.h"
#include "windowharness.h"

#include <QImage>
#include <QQmlProperty>
#include <QQuickItem>
#include <QQuickWindow>
#include <QSet>
#include <QtTest>

#include <functional>

using namespace zentrik;
using namespace zentrik::test;

namespace {

QObject *popupOf(QObject *comboBox)
{
    return comboBox ? comboBox->property("popup").value<QObject *>() : nullptr;
}

bool isOpen(QObject *popup)
{
    return popup && popup->property("opened").toBool();
}

// Samples a row just inside the top edge of a popup's body, its padding, where no popup puts
// content, and describes the first pixel that is not the body's own colour: a body drawn only
// by a shader effect shows the screen behind it there instead.
QString seeThrough(QQuickWindow *window, QObject *popup)
{
    auto *body = popup ? popup->property("background").value<QQuickItem *>() : nullptr;
    if (body == nullptr || !body->isVisible()) {
        return QStringLiteral("no visible body");
    }
    waitForFrame(window);
    const QImage image = window->grabWindow();
    const QColor expected = body->property("color").value<QColor>();
    const QRectF rect = body->mapRectToScene(QRectF(0, 0, body->width(), body->height()));
    const qreal inset = body->property("radius").toReal() + 3;
    const qreal scale = window->devicePixelRatio();
    constexpr int samples = 10;
    for (int i = 0; i < samples; ++i) {
        const QPointF at(rect.left() + inset + (rect.width() - 2 * inset) * i / (samples - 1), rect.top() + 3);
        const QPoint pixel = (at * scale).toPoint();
        if (!image.rect().contains(pixel)) {
            return QStringLiteral("body outside the window at %1,%2").arg(at.x()).arg(at.y());
        }
        const QColor seen = image.pixelColor(pixel);
        if (qAbs(seen.red() - expected.red()) > 2 || qAbs(seen.green() - expected.green()) > 2
            || qAbs(seen.blue() - expected.blue()) > 2) {
            return QStringLiteral("pixel %1,%2 is %3, the body is %4")
                .arg(pixel.x())
                .arg(pixel.y())
                .arg(seen.name(), expected.name());
        }
    }
    return {};
}

// A control's name for screen readers: what its Accessible.name says, else its text.
QString accessibleName(QQuickItem *item)
{
    const QString name = QQmlProperty(item, QStringLiteral("Accessible.name"), qmlContext(item)).read().toString();
    return name.isEmpty() ? item->property("text").toString() : name;
}

// Every visible control of the window a user can operate that has no name for a screen reader.
QStringList unnamedControls(QQuickWindow *window)
{
    QStringList unnamed;
    for (QObject *object : allObjects(window)) {
        auto *item = qobject_cast<QQuickItem *>(object);
        if (!item || !item->isVisible() || !item->isEnabled() || item->window() != window) {
            continue;
        }
        const bool editable = (item->inherits("QQuickTextInput") || item->inherits("QQuickTextEdit"))
            && !item->property("readOnly").toBool();
        const bool operable = item->inherits("QQuickAbstractButton") || item->inherits("QQuickComboBox") || editable;
        // The text field inside a choice list is part of the list.
        const bool insideComboBox = item->parentItem() && item->parentItem()->inherits("QQuickComboBox");
        if (operable && !insideComboBox && item->isEnabled() && accessibleName(item).trimmed().isEmpty()) {
            unnamed.append(
                QString::fromLatin1(item->metaObject()->className()) + QLatin1Char(' ') + item->objectName());
        }
    }
    return unnamed;
}

bool pressUntil(QQuickWindow *window, Qt::Key key, const std::function<bool()> &done, int limit = 80)
{
    for (int i = 0; i < limit && !done(); ++i) {
        QTest::keyClick(window, key);
    }
    return done();
}

} // namespace

// The window's controls under the software renderer, driven only by mouse and keyboard:
// every popup has a body that hides what is behind it, every file dialog opens and cancels,
// and the whole window works from the keyboard.
class ControlsTest : public QObject
{
    Q_OBJECT

    std::unique_ptr<WindowTestEnvironment> m_environment;
    FakeProvider *m_fake = nullptr;

    static QQuickItem *focused(QQuickWindow *window) { return window->activeFocusItem(); }

    // Types a form that holds an e-mail address and presses Generate, which asks first.
    static QObject *askAboutAnEmail(QQuickWindow *window)
    {
        if (!fillField(window, QStringLiteral("Brand/Product Name"), QStringLiteral("Acme"))
            || !fillField(window, QStringLiteral("Target Audience"), QStringLiteral("mail jo.doe@example.com"))
            || !click(findItem(window, QStringLiteral("generateButton")))) {
            return nullptr;
        }
        QObject *dialog = findObject(window, QStringLiteral("piiAlertView"));
        return QTest::qWaitFor([&] { return isOpen(dialog); }) ? dialog : nullptr;
    }

private Q_SLOTS:
    void init()
    {
        m_environment = std::make_unique<WindowTestEnvironment>();
        m_fake = &m_environment->fake();
    }

    void cleanup()
    {
        m_fake = nullptr;
        m_environment.reset();
    }

    void popupsHaveOpaqueBodies_data()
    {
        QTest::addColumn<bool>("dark");
        QTest::newRow("light") << false;
        QTest::newRow("dark") << true;
    }

    void popupsHaveOpaqueBodies()
    {
        QFETCH(bool, dark);
        Preferences().setBoolean(QString::fromLatin1(darkModePreference), dark);
        {
            VoiceNoteManager notes;
            notes.add(VoiceNote::create(QStringLiteral("Groceries"), QStringLiteral("Oat milk and bread")));
        }
        const auto app = startApp();
        QVERIFY(app);
        QQuickWindow *window = app->window();

        // The model pickers and the save notice in Settings. Closing a popup leaves no trace.
        QTest::keyClick(window, Qt::Key_Comma, Qt::ControlModifier);
        QTRY_VERIFY(findItem(window, QStringLiteral("settingsView")));
        QVERIFY(waitForFrame(window));
        const QImage before = window->grabWindow().copy(0, 0, 240, 120);
        for (const QString &name : { QStringLiteral("textModelPicker"), QStringLiteral("imageModelPicker"),
                 QStringLiteral("proxyModePicker"), QStringLiteral("transcriptionProviderPicker") }) {
            QQuickItem *picker = findItem(window, name);
            QVERIFY2(click(picker), qPrintable(name));
            QObject *list = popupOf(picker);
            QTRY_VERIFY2(isOpen(list), qPrintable(name));
            QTest::mouseMove(window, QPoint(5, window->height() - 5));
            const QString fault = seeThrough(window, list);
            QVERIFY2(fault.isEmpty(), qPrintable(name + QStringLiteral(": ") + fault));
            QTest::keyClick(window, Qt::Key_Escape);
            QTRY_VERIFY2(!list->property("visible").toBool(), qPrintable(name));
        }
        QVERIFY(waitForFrame(window));
        QCOMPARE(window->grabWindow().copy(0, 0, 240, 120), before);

        QVERIFY(click(findItem(window, QStringLiteral("saveButton"))));
        QObject *notice = findObject(window, QStringLiteral("saveNotice"));
        QTRY_VERIFY(isOpen(notice));
        QString fault = seeThrough(window, notice);
        QVERIFY2(fault.isEmpty(), qPrintable(QStringLiteral("save notice: ") + fault));
        QTest::keyClick(window, Qt::Key_Return); // OK is the default button
        QTRY_VERIFY(!notice->property("visible").toBool());

        // The generator's choice lists and the privacy dialog.
        QVERIFY(click(findItem(window, QStringLiteral("sidebar:Home"))));
        QTRY_VERIFY(findItem(window, QStringLiteral("homeView")));
        QVERIFY(openSloganGenerator(window) != nullptr);
        QList<QQuickItem *> choices { findItem(window, QStringLiteral("assistantPicker")) };
        for (QObject *object : allObjects(window)) {
            auto *item = qobject_cast<QQuickItem *>(object);
            if (item && item->inherits("QQuickComboBox") && item->isVisible()
                && item->objectName().startsWith(QLatin1String("field:"))) {
                choices.append(item);
            }
        }
        QVERIFY(choices.size() >= 2);
        for (QQuickItem *choice : choices) {
            QVERIFY(click(choice));
            QObject *list = popupOf(choice);
            QTRY_VERIFY2(isOpen(list), qPrintable(choice->objectName()));
            QTest::mouseMove(window, QPoint(5, window->height() - 5));
            fault = seeThrough(window, list);
            QVERIFY2(fault.isEmpty(), qPrintable(choice->objectName() + QStringLiteral(": ") + fault));
            QTest::keyClick(window, Qt::Key_Escape);
            QTRY_VERIFY(!list->property("visible").toBool());
        }
        QObject *privacy = askAboutAnEmail(window);
        QVERIFY(privacy);
        fault = seeThrough(window, privacy);
        QVERIFY2(fault.isEmpty(), qPrintable(QStringLiteral("privacy dialog: ") + fault));
        QTest::keyClick(window, Qt::Key_Escape);
        QTRY_VERIFY(!privacy->property("visible").toBool());
        QVERIFY(m_fake->requests().isEmpty());

        // The voice note editor and the delete confirmation.
        QVERIFY(click(findItem(window, QStringLiteral("sidebar:Voice Notes"))));
        QTRY_VERIFY(findItem(window, QStringLiteral("editNoteButton")));
        for (const auto &[button, dialogName] :
            { std::pair { QStringLiteral("editNoteButton"), QStringLiteral("voiceNoteEditor") },
                std::pair { QStringLiteral("deleteNoteButton"), QStringLiteral("deleteNoteDialog") } }) {
            QVERIFY(click(findItem(window, button)));
            QObject *dialog = findObject(window, dialogName);
            QTRY_VERIFY2(isOpen(dialog), qPrintable(dialogName));
            fault = seeThrough(window, dialog);
            QVERIFY2(fault.isEmpty(), qPrintable(dialogName + QStringLiteral(": ") + fault));
            QTest::keyClick(window, Qt::Key_Escape);
            QTRY_VERIFY2(!dialog->property("visible").toBool(), qPrintable(dialogName));
        }
        QCOMPARE(VoiceNoteManager().notes().size(), 1); // Escape kept the note
    }

    void fileDialogsOpenAndCancel()
    {
        const auto app = startApp();
        QVERIFY(app);
        QQuickWindow *window = app->window();
        QVERIFY(click(findItem(window, QStringLiteral("sidebar:Chat With Your PDFs"))));
        QTRY_VERIFY(findItem(window, QStringLiteral("openPdfButton")));
        QVERIFY(click(findItem(window, QStringLiteral("openPdfButton"))));
        QQuickItem *dialog = nullptr;
        QTRY_VERIFY((dialog = openFileDialog(window)) != nullptr);
        const QString fault = seeThrough(window, dialog);
        QVERIFY2(fault.isEmpty(), qPrintable(QStringLiteral("file dialog: ") + fault));
        QTest::keyClick(window, Qt::Key_Escape);
        QTRY_VERIFY(openFileDialog(window) == nullptr);
        QVERIFY(visibleTexts(window).contains(QStringLiteral("Open a PDF or drop one here.")));

        // Once more, to see the dialog is made only once and opens again.
        QVERIFY(click(findItem(window, QStringLiteral("openPdfButton"))));
        QTRY_VERIFY((dialog = openFileDialog(window)) != nullptr);
        QTest::keyClick(window, Qt::Key_Escape);
        QTRY_VERIFY(openFileDialog(window) == nullptr);
    }

    void privacyDialogSendsTheRedactedCopyOnReturn()
    {
        m_fake->on("POST", "/v1/chat/completions",
            ScriptedReply::sse({ test::chunkLine(QStringLiteral("Done.")), test::doneLine }));
        const auto app = startApp();
        QVERIFY(app);
        QQuickWindow *window = app->window();
        GeneratorViewModel *generator = openSloganGenerator(window);
        QVERIFY(generator);
        QObject *dialog = askAboutAnEmail(window);
        QVERIFY(dialog);
        QVERIFY(m_fake->requests().isEmpty()); // nothing leaves before the choice
        QQuickItem *redacted = findItem(window, QStringLiteral("sendRedactedButton"));
        QTRY_COMPARE(focused(window), redacted);
        QVERIFY(redacted->property("visualFocus").toBool()); // the ring shows which button Return presses
        QTest::keyClick(window, Qt::Key_Return);
        QTRY_VERIFY(!dialog->property("visible").toBool());
        QTRY_COMPARE_WITH_TIMEOUT(generator->output(), QStringLiteral("Done."), 10000);
        QCOMPARE(m_fake->requests().size(), 1);
        const QString sent = test::lastMessageText(m_fake->lastRequest().json());
        QVERIFY2(sent.contains(QLatin1String("[EMAIL_ADDRESS]")), qPrintable(sent));
        QVERIFY(!m_fake->lastRequest().body.contains("example.com"));
    }

    // Tab visits every card of the dashboard, scrolled into view, then the sidebar and the
    // appearance switch; nothing invisible takes a turn.
    void tabReachesEveryCardAndTheSidebar()
    {
        const auto app = startApp();
        QVERIFY(app);
        QQuickWindow *window = app->window();
        QTRY_VERIFY(findItem(window, QStringLiteral("homeView")));
        QSet<QQuickItem *> cards; // two categories may hold cards of the same title
        int cardCount = 0;
        for (QObject *object : allObjects(window)) {
            const QString name = object->objectName();
            cardCount += qobject_cast<QQuickItem *>(object) != nullptr
                && (name.startsWith(QLatin1String("agentCard:")) || name.startsWith(QLatin1String("promptOption:")));
        }
        bool sidebar = false;
        bool darkModeSwitch = false;
        const QRectF windowRect(QPointF(0, 0), window->size());
        for (int stop = 0; stop < 120 && !(sidebar && darkModeSwitch && cards.size() == cardCount); ++stop) {
            QTest::keyClick(window, Qt::Key_Tab);
            QQuickItem *item = focused(window);
            QVERIFY2(item, "Tab left nothing focused");
            QVERIFY(waitForFrame(window));
            const QRectF rect = item->mapRectToScene(QRectF(0, 0, item->width(), item->height()));
            QVERIFY2(item->isVisible() && rect.width() > 4 && rect.height() > 4,
                qPrintable(QStringLiteral("invisible focus stop %1")
                               .arg(QString::fromLatin1(item->metaObject()->className()))));
            QVERIFY2(
                windowRect.contains(rect.center()), qPrintable(item->objectName() + QStringLiteral(" is out of view")));
            const QString name = item->objectName();
            if (name.startsWith(QLatin1String("agentCard:")) || name.startsWith(QLatin1String("promptOption:"))) {
                QVERIFY2(
                    windowRect.contains(rect.adjusted(1, 1, -1, -1)), qPrintable(name + QStringLiteral(" is cut")));
                QVERIFY2(item->property("visualFocus").toBool(), qPrintable(name));
                cards.insert(item);
            }
            // The list hands the focus to its current row.
            sidebar = sidebar || name.startsWith(QLatin1String("sidebar:"));
            darkModeSwitch = darkModeSwitch || name == QLatin1String("darkModeSwitch");
        }
        QVERIFY(cardCount >= int(AssistantCatalogue::allAgents().size()));
        QCOMPARE(cards.size(), cardCount);
        QVERIFY(sidebar);
        QVERIFY(darkModeSwitch);

        // Return on the switch turns dark mode on.
        QVERIFY(pressUntil(
            window, Qt::Key_Tab, [&] { return focused(window)->objectName() == QLatin1String("darkModeSwitch"); }));
        QTest::keyClick(window, Qt::Key_Return);
        QTRY_VERIFY(Preferences().boolean(QString::fromLatin1(darkModePreference)));

        // Return on a focused card opens its tool.
        QVERIFY(pressUntil(window, Qt::Key_Tab,
            [&] { return focused(window)->objectName() == QLatin1String("agentCard:Slogan Generator"); }));
        QTest::keyClick(window, Qt::Key_Return);
        QTRY_VERIFY(findItem(window, QStringLiteral("generatorView")));
    }

    // The arrow keys walk the sidebar and Return opens each entry; every screen names all its
    // controls for screen readers. With ZENTRIK_SCREENSHOT_DIR set, every screen is saved too.
    void arrowsAndReturnOpenEverySidebarEntry_data()
    {
        QTest::addColumn<bool>("dark");
        QTest::newRow("light") << false;
        QTest::newRow("dark") << true;
    }

    void arrowsAndReturnOpenEverySidebarEntry()
    {
        QFETCH(bool, dark);
        Preferences().setBoolean(QString::fromLatin1(darkModePreference), dark);
        const auto app = startApp();
        QVERIFY(app);
        QQuickWindow *window = app->window();
        QQuickItem *list = findItem(window, QStringLiteral("sidebarList"));
        QVERIFY(list);
        QVERIFY(pressUntil(window, Qt::Key_Tab, [&] { return list->hasActiveFocus(); }));
        QVERIFY(pressUntil(window, Qt::Key_Up, [&] { return list->property("currentIndex").toInt() == 0; }));

        const SidebarModel entries;
        for (int row = 0; row < entries.rowCount(); ++row) {
            const QString label = entries.data(entries.index(row), SidebarModel::LabelRole).toString();
            QCOMPARE(list->property("currentIndex").toInt(), row);
            QTest::keyClick(window, Qt::Key_Return);
            QQuickItem *entry = findItem(window, QStringLiteral("sidebar:") + label);
            QVERIFY(entry);
            QTRY_VERIFY2(entry->property("selected").toBool(), qPrintable(label));
            QVERIFY2(list->hasActiveFocus(), qPrintable(label + QStringLiteral(" took the focus from the sidebar")));
            QVERIFY(waitForFrame(window));
            const QStringList unnamed = unnamedControls(window);
            QVERIFY2(unnamed.isEmpty(), qPrintable(label + QStringLiteral(": ") + unnamed.join(QStringLiteral(", "))));
            saveScreenshots(window,
                label.toLower().replace(QLatin1Char(' '), QLatin1Char('-'))
                    + (dark ? QStringLiteral("-dark") : QStringLiteral("-light")));
            QTest::keyClick(window, Qt::Key_Down);
        }
    }
};
ZENTRIK_TEST(ControlsTest)

#include "tst_controls.moc"
