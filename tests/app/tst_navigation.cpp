#include "app/contentviewmodel.h"
#include "app/screenroute.h"
#include "app/sidebarmodel.h"
#include "support/testregistry.h"
#include "tools/assistantcatalogue.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QtTest>

using namespace zentrik;

using OptionalItem = std::optional<NavigationItem>;
Q_DECLARE_METATYPE(OptionalItem)

// Where each selection leads, and the navigation state the sidebar and the cards drive.
class NavigationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void routing_data()
    {
        QTest::addColumn<OptionalItem>("item");
        QTest::addColumn<QString>("agent");
        QTest::addColumn<QString>("screen");
        QTest::addColumn<QString>("argument");
        const auto row = [](const char *name, const OptionalItem &item, const QString &agent, const QString &screen,
                             const QString &argument) { QTest::newRow(name) << item << agent << screen << argument; };

        row("nothing selected", OptionalItem(), QString(), "dashboard", QString());
        row("home", OptionalItem(NavigationItem::home()), QString(), "dashboard", QString());
        row("ask", OptionalItem(NavigationItem::tool("Ask Me Anything")), QString(), "askMeAnything",
            "Ask Me Anything");
        row("pdf", OptionalItem(NavigationItem::tool("Chat With Your PDFs")), QString(), "pdfChat",
            "Chat With Your PDFs");
        row("unknown tool", OptionalItem(NavigationItem::tool("Time Machine")), QString(), "toolNotImplemented",
            "Time Machine");
        row("tool names are exact", OptionalItem(NavigationItem::tool("ask me anything")), QString(),
            "toolNotImplemented", "ask me anything");
        row("a category name is no tool", OptionalItem(NavigationItem::tool("Marketing")), QString(),
            "toolNotImplemented", "Marketing");
        row("empty tool name", OptionalItem(NavigationItem::tool(QString())), QString(), "toolNotImplemented",
            QString());
        row("category", OptionalItem(NavigationItem::category("Human Resources")), QString(), "categoryGrid",
            "Human Resources");
        row("unknown category", OptionalItem(NavigationItem::category("Finance")), QString(), "toolNotImplemented",
            "Finance");
        row("settings", OptionalItem(NavigationItem::settings()), QString(), "settings", QString());
        row("history", OptionalItem(NavigationItem::history()), QString(), "history", QString());

        // A card picked from the dashboard or a grid opens the tool that serves its title.
        row("card with nothing selected", OptionalItem(), "Persuasive Sales Copy", "salesGenerator",
            "Persuasive Sales Copy");
        row("support card in its grid", OptionalItem(NavigationItem::category("Customer Support")),
            "Customer Support Ticket Response Agent", "customerSupportGenerator",
            "Customer Support Ticket Response Agent");
        row("image card", OptionalItem(NavigationItem::category("Marketing")), "Images and Logo Generator",
            "imageStudio", "Images and Logo Generator");
        row("a card no tool serves", OptionalItem(NavigationItem::home()), "Crystal Ball", "agentDetail",
            "Crystal Ball");
        // A tool or the settings selected means the card is no longer what is shown.
        row("tool wins over card", OptionalItem(NavigationItem::tool("Voice Notes")), "Slogan Generator", "voiceNotes",
            "Voice Notes");
        row("settings win over card", OptionalItem(NavigationItem::settings()), "Slogan Generator", "settings",
            QString());
    }

    void routing()
    {
        QFETCH(OptionalItem, item);
        QFETCH(QString, agent);
        QFETCH(QString, screen);
        QFETCH(QString, argument);
        const ScreenRoute route = routeSelection(item, agent);
        QCOMPARE(screenId(route.screen), screen);
        QCOMPARE(route.argument, argument);
    }

    // A stored conversation opens on its tool's screen, which takes it once; another tool's
    // screen never gets it.
    void conversationsOpenInTheirTool_data()
    {
        QTest::addColumn<QString>("tool");
        QTest::addColumn<QString>("assistant");
        QTest::addColumn<QString>("screen");
        QTest::newRow("ask") << "askMeAnything" << QString() << "askMeAnything";
        QTest::newRow("pdf") << "pdfChat" << QString() << "pdfChat";
        QTest::newRow("debugger") << "debugger" << QString() << "codeDebugger";
        QTest::newRow("sample data") << "sampleData" << QString() << "sampleDataGenerator";
        QTest::newRow("image") << "imageStudio" << QString() << "imageStudio";
        QTest::newRow("generator") << "generator"
                                   << "Job Description Generator"
                                   << "humanResourcesGenerator";
        QTest::newRow("unknown") << "timeMachine" << QString() << "history";
    }

    void conversationsOpenInTheirTool()
    {
        QFETCH(QString, tool);
        QFETCH(QString, assistant);
        QFETCH(QString, screen);
        ContentViewModel navigation;
        navigation.showHistory();
        navigation.openConversation(tool, QStringLiteral("c-1"), assistant);
        QCOMPARE(navigation.screen(), screen);
        QCOMPARE(navigation.takeConversation(QStringLiteral("askMeAnything") == tool ? QStringLiteral("pdfChat")
                                                                                     : QStringLiteral("askMeAnything")),
            QString());
        const QString expected = screen == QLatin1String("history") ? QString() : QStringLiteral("c-1");
        QCOMPARE(navigation.takeConversation(tool), expected);
        QCOMPARE(navigation.takeConversation(tool), QString());
    }

    // The three cards sharing "doc.text" go to three different tools: identity is the title.
    void everyCardOpensTheToolOfItsTitle()
    {
        QSet<QString> screens;
        int cards = 0;
        for (const Category &category : AssistantCatalogue::categories()) {
            for (const AIAgent &agent : category.agents) {
                ++cards;
                const ScreenRoute route = routeSelection(NavigationItem::category(category.name), agent.title);
                QVERIFY2(route.screen != Screen::AgentDetail, qPrintable(agent.title));
                QCOMPARE(route.argument, agent.title);
                if (agent.icon == QStringLiteral("doc.text")) {
                    screens.insert(screenId(route.screen));
                }
            }
        }
        QCOMPARE(cards, 25);
        QCOMPARE(
            screens, QSet<QString>({ "marketingGenerator", "customerSupportGenerator", "humanResourcesGenerator" }));
    }

    void titlesNameTheScreen_data()
    {
        QTest::addColumn<OptionalItem>("item");
        QTest::addColumn<QString>("agent");
        QTest::addColumn<QString>("title");
        const auto row = [](const char *name, const OptionalItem &item, const QString &agent, const QString &title) {
            QTest::newRow(name) << item << agent << title;
        };
        row("dashboard", OptionalItem(), QString(), "Zentrik Dashboard");
        row("generator", OptionalItem(NavigationItem::home()), "Slogan Generator", "Marketing");
        row("support", OptionalItem(), "Documentation Explainer", "Customer Support");
        row("image card", OptionalItem(), "Images and Logo Generator", "Image Creation Studio");
        row("tool", OptionalItem(NavigationItem::tool("Voice Notes")), QString(), "Voice Notes");
        row("category", OptionalItem(NavigationItem::category("Tech")), QString(), "Tech");
    }

    void titlesNameTheScreen()
    {
        QFETCH(OptionalItem, item);
        QFETCH(QString, agent);
        QFETCH(QString, title);
        QCOMPARE(screenTitle(routeSelection(item, agent)), title);
    }

    void promptOptionsOpenToolsAndCategories_data()
    {
        QTest::addColumn<QString>("destination");
        QTest::addColumn<QString>("screen");
        for (const PromptOption &option : AssistantCatalogue::promptOptions()) {
            const bool isCategory = AssistantCatalogue::category(option.destination) != nullptr;
            QTest::newRow(qPrintable(option.destination))
                << option.destination << (isCategory ? "categoryGrid" : QString());
        }
    }

    void promptOptionsOpenToolsAndCategories()
    {
        QFETCH(QString, destination);
        QFETCH(QString, screen);
        ContentViewModel navigation;
        navigation.open(destination);
        if (screen.isEmpty()) {
            // The first three shortcuts select the tool of their name.
            QCOMPARE(navigation.selectedItem(), OptionalItem(NavigationItem::tool(destination)));
            QVERIFY(navigation.screen() != QStringLiteral("toolNotImplemented"));
        } else {
            QCOMPARE(navigation.selectedItem(), OptionalItem(NavigationItem::category(destination)));
            QCOMPARE(navigation.screen(), screen);
        }
        QCOMPARE(navigation.screenArgument(), destination);
    }

    void cardThenBackReturnsToTheGrid()
    {
        ContentViewModel navigation;
        QSignalSpy routes(&navigation, &ContentViewModel::routeChanged);
        QSignalSpy agents(&navigation, &ContentViewModel::selectedAgentChanged);
        navigation.showCategory(QStringLiteral("Sales"));
        navigation.openAgent(QStringLiteral("Objection Handling Scripts"));
        QCOMPARE(navigation.screen(), QStringLiteral("salesGenerator"));
        QCOMPARE(navigation.selectedAgent(), QStringLiteral("Objection Handling Scripts"));
        navigation.backToAgents();
        QCOMPARE(navigation.screen(), QStringLiteral("categoryGrid"));
        QCOMPARE(navigation.screenArgument(), QStringLiteral("Sales"));
        QVERIFY(navigation.selectedAgent().isEmpty());
        QCOMPARE(routes.count(), 3);
        QCOMPARE(agents.count(), 2);
        // Going back twice changes nothing more.
        navigation.backToAgents();
        QCOMPARE(routes.count(), 3);
        QCOMPARE(agents.count(), 2);
    }

    void sidebarSelectionLeavesTheCard()
    {
        ContentViewModel navigation;
        navigation.openAgent(QStringLiteral("Slogan Generator"));
        QCOMPARE(navigation.screen(), QStringLiteral("marketingGenerator"));
        navigation.showHome();
        QCOMPARE(navigation.screen(), QStringLiteral("dashboard"));
        QVERIFY(navigation.selectedAgent().isEmpty());
    }

    void cardPickedAwayFromADashboardReturnsToIt()
    {
        ContentViewModel navigation;
        navigation.showTool(QStringLiteral("Voice Notes"));
        navigation.openAgent(QStringLiteral("Code Debugger"));
        QCOMPARE(navigation.screen(), QStringLiteral("codeDebugger"));
        navigation.backToAgents();
        QCOMPARE(navigation.screen(), QStringLiteral("dashboard"));
    }

    void signalsOnlyOnChange()
    {
        ContentViewModel navigation;
        QSignalSpy routes(&navigation, &ContentViewModel::routeChanged);
        QSignalSpy selections(&navigation, &ContentViewModel::selectionChanged);
        navigation.showHome(); // nothing selected already shows the dashboard
        QCOMPARE(routes.count(), 0);
        QCOMPARE(selections.count(), 1);
        navigation.showHome();
        QCOMPARE(selections.count(), 1);
        navigation.showTool(QStringLiteral("Nope"));
        navigation.showTool(QStringLiteral("Nope"));
        QCOMPARE(routes.count(), 1);
        navigation.showTool(QStringLiteral("Nope either"));
        QCOMPARE(routes.count(), 2); // same screen, another name
        QCOMPARE(navigation.screenArgument(), QStringLiteral("Nope either"));
    }

    void sidebarFollowsTheSelection()
    {
        ContentViewModel navigation;
        SidebarModel sidebar;
        QAbstractItemModelTester tester(&sidebar, QAbstractItemModelTester::FailureReportingMode::QtTest);
        sidebar.setNavigation(&navigation);
        const auto selectedRows = [&sidebar] {
            QList<int> rows;
            for (int row = 0; row < sidebar.rowCount(); ++row) {
                if (sidebar.data(sidebar.index(row), SidebarModel::SelectedRole).toBool()) {
                    rows.append(row);
                }
            }
            return rows;
        };
        QCOMPARE(selectedRows(), QList<int> { 0 }); // nothing selected: the dashboard, so Home

        QSignalSpy changed(&sidebar, &QAbstractItemModel::dataChanged);
        sidebar.activate(3);
        QCOMPARE(navigation.selectedItem(), OptionalItem(NavigationItem::tool(QStringLiteral("Voice Notes"))));
        QCOMPARE(selectedRows(), QList<int> { 3 });
        QVERIFY(!changed.isEmpty());
        QVERIFY(changed.constLast().at(2).value<QList<int>>().contains(SidebarModel::SelectedRole));

        navigation.showSettings();
        QCOMPARE(selectedRows(), QList<int> { sidebar.rowCount() - 1 });
        navigation.showTool(QStringLiteral("Not in the sidebar"));
        QCOMPARE(selectedRows(), QList<int> {});

        sidebar.activate(-1);
        sidebar.activate(sidebar.rowCount());
        QCOMPARE(navigation.selectedItem(), OptionalItem(NavigationItem::tool(QStringLiteral("Not in the sidebar"))));
    }
};
ZENTRIK_TEST(NavigationTest)

#include "tst_navigation.moc"
