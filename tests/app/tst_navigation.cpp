#include "app/contentviewmodel.h"
#include "app/screenroute.h"
#include "app/sidebarmodel.h"
#include "support/testregistry.h"

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
        row("ask", OptionalItem(NavigationItem::tool("Ask Me Anything")), QString(), "askMeAnything",
            "Ask Me Anything");
        row("unknown tool", OptionalItem(NavigationItem::tool("Time Machine")), QString(), "toolNotImplemented",
            "Time Machine");
        row("a category name is no tool", OptionalItem(NavigationItem::tool("Marketing")), QString(),
            "toolNotImplemented", "Marketing");
        row("category", OptionalItem(NavigationItem::category("Human Resources")), QString(), "categoryGrid",
            "Human Resources");
        row("settings", OptionalItem(NavigationItem::settings()), QString(), "settings", QString());
        row("history", OptionalItem(NavigationItem::history()), QString(), "history", QString());

        // A card picked from the dashboard or a grid opens the tool that serves its title.
        row("card with nothing selected", OptionalItem(), "Persuasive Sales Copy", "salesGenerator",
            "Persuasive Sales Copy");
        row("image card", OptionalItem(NavigationItem::category("Marketing")), "Images and Logo Generator",
            "imageStudio", "Images and Logo Generator");
        row("a card no tool serves", OptionalItem(NavigationItem::home()), "Crystal Ball", "agentDetail",
            "Crystal Ball");
        // A tool selected means the card is no longer what is shown.
        row("tool wins over card", OptionalItem(NavigationItem::tool("Voice Notes")), "Slogan Generator", "voiceNotes",
            "Voice Notes");
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
