#include "app/contentviewmodel.h"
#include "app/licensegate.h"
#include "app/theme.h"
#include "app/zentrikapp.h"
#include "model/apimanager.h"
#include "settings/preferences.h"
#include "support/fakeprovider.h"
#include "support/testregistry.h"
#include "tools/assistantcatalogue.h"
#include "windowharness.h"

#include <QQmlApplicationEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QtTest>

using namespace zentrik;
using namespace zentrik::test;

// The real window, started as the program starts it, driven by mouse and keyboard.
class WindowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_environment = std::make_unique<WindowTestEnvironment>(); }
    void cleanup() { m_environment.reset(); }

    void startsOnTheDashboard()
    {
        const auto app = startApp();
        QVERIFY(app);
        QTRY_VERIFY(findItem(app->window(), QStringLiteral("homeView")));
        const QStringList texts = visibleTexts(app->window());
        for (const QString &expected :
            { QStringLiteral("Zentrik Dashboard"), QStringLiteral("What do you want to do today?"),
                QStringLiteral("Supercharge your workflow today."), QStringLiteral("Your Available AI Assistants (24)"),
                QStringLiteral("Get answers or creative ideas on any topic."),
                QStringLiteral("Chat with your files to gain insights quickly."),
                QStringLiteral("Create voice notes and get AI-generated summaries."),
                QStringLiteral("Explore marketing strategies and content ideas.") }) {
            QVERIFY2(texts.contains(expected), qPrintable(expected));
        }
        // Every card of every category is on the dashboard.
        for (const AIAgent &agent : AssistantCatalogue::allAgents()) {
            QVERIFY2(findItem(app->window(), QStringLiteral("agentCard:") + agent.title), qPrintable(agent.title));
        }
        for (const QString &entry : { QStringLiteral("Home"), QStringLiteral("Image Creation Studio"),
                 QStringLiteral("Human Resources"), QStringLiteral("Settings") }) {
            QVERIFY2(findItem(app->window(), QStringLiteral("sidebar:") + entry), qPrintable(entry));
        }
        // The desktop appends the application name; the window's own title never repeats it.
        QCOMPARE(app->window()->title(), QStringLiteral("Zentrik Dashboard"));
        saveScreenshots(app->window(), QStringLiteral("dashboard-light"));
    }

    // Card titles that wrap must push the description down, never draw over it.
    void cardTextsNeverOverlap_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::newRow("1280x800") << QSize(1280, 800);
        QTest::newRow("1024x700") << QSize(1024, 700);
        QTest::newRow("narrowest") << QSize(800, 600);
    }

    void cardTextsNeverOverlap()
    {
        QFETCH(QSize, size);
        const auto app = startApp();
        QVERIFY(app);
        app->window()->resize(size);
        QTRY_COMPARE(app->window()->size(), size);
        QVERIFY(waitForFrame(app->window()));
        int checked = 0;
        for (const AIAgent &agent : AssistantCatalogue::allAgents()) {
            QQuickItem *card = findItem(app->window(), QStringLiteral("agentCard:") + agent.title);
            QVERIFY(card);
            QQuickItem *title = findItem(card, QStringLiteral("agentCardTitle"));
            QQuickItem *description = findItem(card, QStringLiteral("agentCardDescription"));
            QVERIFY(title && description);
            QVERIFY2(title->height() + 0.5 >= title->implicitHeight(),
                qPrintable(agent.title
                    + QStringLiteral(" %1 %2 %3 %4")
                          .arg(title->height())
                          .arg(title->implicitHeight())
                          .arg(title->width())
                          .arg(card->height())));
            const qreal titleBottom = title->mapToItem(card, QPointF(0, title->height())).y();
            const qreal descriptionTop = description->mapToItem(card, QPointF(0, 0)).y();
            QVERIFY2(titleBottom <= descriptionTop + 0.5, qPrintable(agent.title));
            QVERIFY2(description->mapToItem(card, QPointF(0, description->height())).y() <= card->height(),
                qPrintable(agent.title));
            QVERIFY2(card->x() + card->width() <= card->parentItem()->width() + 0.5, qPrintable(agent.title));
            ++checked;
        }
        QCOMPARE(checked, int(AssistantCatalogue::allAgents().size()));
    }

    void dashboardCardOpensItsGenerator()
    {
        const auto app = startApp();
        QVERIFY(app);
        QQuickItem *card = findItem(app->window(), QStringLiteral("agentCard:Slogan Generator"));
        QVERIFY(card);
        QVERIFY(click(card));
        ContentViewModel *navigation = app->navigation();
        QVERIFY(navigation);
        QTRY_COMPARE(navigation->screen(), QStringLiteral("marketingGenerator"));
        QCOMPARE(navigation->screenArgument(), QStringLiteral("Slogan Generator"));
        QCOMPARE(navigation->selectedAgent(), QStringLiteral("Slogan Generator"));
        QTRY_VERIFY(!findItem(app->window(), QStringLiteral("homeView")));
        QVERIFY(visibleTexts(app->window()).join(QLatin1Char('\n')).contains(QStringLiteral("Slogan Generator")));

        // Home in the sidebar leaves the card.
        QVERIFY(click(findItem(app->window(), QStringLiteral("sidebar:Home"))));
        QTRY_VERIFY(findItem(app->window(), QStringLiteral("homeView")));
        QVERIFY(navigation->selectedAgent().isEmpty());
    }

    void shortcutAndCategoryGridAndBack()
    {
        const auto app = startApp();
        QVERIFY(app);
        QVERIFY(click(
            findItem(app->window(), QStringLiteral("promptOption:Explore marketing strategies and content ideas."))));
        QTRY_VERIFY(findItem(app->window(), QStringLiteral("categoryView")));
        ContentViewModel *navigation = app->navigation();
        QCOMPARE(navigation->screenArgument(), QStringLiteral("Marketing"));
        QVERIFY(findItem(app->window(), QStringLiteral("sidebar:Marketing"))->property("selected").toBool());
        QVERIFY(!findItem(app->window(), QStringLiteral("agentCard:Persuasive Sales Copy")));

        QVERIFY(click(findItem(app->window(), QStringLiteral("agentCard:Images and Logo Generator"))));
        QTRY_COMPARE(navigation->screen(), QStringLiteral("imageStudio"));

        // A card no tool serves shows its detail screen, whose button returns to the grid.
        navigation->openAgent(QStringLiteral("Crystal Ball"));
        QTRY_VERIFY(findItem(app->window(), QStringLiteral("agentDetailView")));
        QVERIFY(visibleTexts(app->window()).contains(QStringLiteral("Agent-specific interface goes here")));
        QVERIFY(click(findItem(app->window(), QStringLiteral("backToAgents"))));
        QTRY_VERIFY(findItem(app->window(), QStringLiteral("categoryView")));
        QCOMPARE(navigation->screenArgument(), QStringLiteral("Marketing"));
    }

    void unknownToolSaysNotImplemented()
    {
        const auto app = startApp();
        QVERIFY(app);
        ContentViewModel *navigation = app->navigation();
        QVERIFY(navigation);
        navigation->showTool(QStringLiteral("Teleporter"));
        QTRY_VERIFY(findItem(app->window(), QStringLiteral("toolNotImplementedView")));
        QVERIFY(visibleTexts(app->window()).contains(QStringLiteral("Tool not implemented")));
        QTRY_VERIFY(!findItem(app->window(), QStringLiteral("homeView")));
    }

    void darkModeSurvivesARestart()
    {
        {
            const auto app = startApp();
            QVERIFY(app);
            QQuickItem *toggle = findItem(app->window(), QStringLiteral("darkModeSwitch"));
            QVERIFY(toggle);
            QCOMPARE(toggle->property("checked").toBool(), false); // light when nothing is stored
            const QColor light = app->window()->color();
            QVERIFY(click(toggle));
            QTRY_VERIFY(toggle->property("checked").toBool());
            QTRY_VERIFY(app->window()->color() != light);
            QVERIFY(Preferences().boolean(QString::fromLatin1(darkModePreference)));
        }
        const auto restarted = startApp();
        QVERIFY(restarted);
        QQuickItem *toggle = findItem(restarted->window(), QStringLiteral("darkModeSwitch"));
        QVERIFY(toggle->property("checked").toBool());
        Theme dark;
        QCOMPARE(restarted->window()->color(), dark.windowColor());
        saveScreenshots(restarted->window(), QStringLiteral("dashboard-dark"));
    }

    void howItWorksFoldsOpen()
    {
        const auto app = startApp();
        QVERIFY(app);
        app->navigation()->showSettings();
        QTRY_VERIFY(findItem(app->window(), QStringLiteral("howItWorksToggle")));
        QQuickItem *chevron = findItem(app->window(), QStringLiteral("howItWorksChevron"));
        const QString closedGlyph = chevron->property("text").toString();
        QVERIFY(!findItem(app->window(), QStringLiteral("howItWorksBody"))->isVisible());
        QVERIFY(click(findItem(app->window(), QStringLiteral("howItWorksToggle"))));
        QTRY_VERIFY(findItem(app->window(), QStringLiteral("howItWorksBody"))->isVisible());
        QVERIFY(chevron->property("text").toString() != closedGlyph);
        const QStringList texts = visibleTexts(app->window());
        for (const QString &text :
            { QStringLiteral("Using your own API keys provides several benefits:"), QStringLiteral("Cost Management"),
                QStringLiteral("How to obtain API keys:"), QStringLiteral("Needed for FLUX and other image models") }) {
            QVERIFY2(texts.contains(text), qPrintable(text));
        }
    }

    void licenceGateHoldsTheWindowUntilVerified()
    {
        if (!SecretStore().isAvailable()) {
            QSKIP("No Secret Service on this session bus; scripts/test provides one");
        }
        FakeProvider fake;
        fake.enqueue("POST", "/license", [] {
            test::ScriptedReply reply = test::ScriptedReply::json(R"({"valid": false})");
            reply.pieces.front().pauseBefore = std::chrono::milliseconds(400);
            return reply;
        }());
        fake.on("POST", "/license", test::ScriptedReply::json(R"({"valid": true})"));
        qputenv(LicenseGate::urlVariable, fake.baseUrl().toString().toUtf8() + "/license");
        SecretStore store;
        QVERIFY(store.set(QStringLiteral("ZK-OLD"), QString::fromLatin1(LicenseGate::licenseAccount)));

        const auto app = startApp();
        QVERIFY(app);
        QVERIFY(findItem(app->window(), QStringLiteral("licenseChecking")));
        QVERIFY(visibleTexts(app->window()).contains(QStringLiteral("Checking license...")));
        QVERIFY(!findItem(app->window(), QStringLiteral("homeView")));

        QTRY_VERIFY_WITH_TIMEOUT(findItem(app->window(), QStringLiteral("licenseSetup")), 10000);
        QVERIFY(visibleTexts(app->window())
                    .contains(QStringLiteral("This license key is not valid. Check it and try again.")));
        // Settings stay shut while the licence is not verified.
        QTest::keyClick(app->window(), Qt::Key_Comma, Qt::ControlModifier);
        QVERIFY(!findItem(app->window(), QStringLiteral("settingsView")));

        QVERIFY(click(findItem(app->window(), QStringLiteral("licenseKeyField"))));
        typeText(app->window(), QStringLiteral("ZK-NEW"));
        QVERIFY(click(findItem(app->window(), QStringLiteral("activateButton"))));
        QTRY_VERIFY_WITH_TIMEOUT(findItem(app->window(), QStringLiteral("homeView")), 10000);
        QCOMPARE(fake.requestCount(), 2);
        QCOMPARE(fake.lastRequest().json().object().value(QStringLiteral("licenseKey")).toString(),
            QStringLiteral("ZK-NEW"));
        // The key is stored in the background, beside the check: it may land after the window opens.
        QTRY_COMPARE(
            store.get(QString::fromLatin1(LicenseGate::licenseAccount)).value_or(QString()), QStringLiteral("ZK-NEW"));
        store.remove(QString::fromLatin1(LicenseGate::licenseAccount));
    }

private:
    std::unique_ptr<WindowTestEnvironment> m_environment;
};
ZENTRIK_TEST(WindowTest)

#include "tst_window.moc"
