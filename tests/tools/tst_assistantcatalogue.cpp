#include "support/testregistry.h"
#include "tools/assistantcatalogue.h"
#include "tools/assistantfamily.h"

#include <QtTest>

#include <QSet>

using namespace zentrik;

Q_DECLARE_METATYPE(zentrik::AgentDestination::Kind)

class AssistantCatalogueTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void categoriesInOrder()
    {
        QStringList names;
        QList<int> sizes;
        for (const Category &category : AssistantCatalogue::categories()) {
            names.append(category.name);
            sizes.append(int(category.agents.size()));
            QVERIFY(!category.id.isNull());
            QVERIFY(!category.icon.isEmpty());
        }
        QCOMPARE(names,
            QStringList({ QStringLiteral("Marketing"), QStringLiteral("Sales"), QStringLiteral("Customer Support"),
                QStringLiteral("Tech"), QStringLiteral("Human Resources") }));
        QCOMPARE(sizes, QList<int>({ 12, 6, 2, 2, 3 }));
        QCOMPARE(AssistantCatalogue::allAgents().size(), 25);
        // The heading's count is fixed text, not the number of cards.
        QCOMPARE(AssistantCatalogue::showcaseHeading(), QStringLiteral("Your Available AI Assistants (24)"));
    }

    void cardsAreDistinctByTitle()
    {
        QSet<QString> titles;
        QSet<QUuid> ids;
        QStringList docTextTitles;
        for (const AIAgent &agent : AssistantCatalogue::allAgents()) {
            titles.insert(agent.title);
            ids.insert(agent.id);
            QVERIFY(!agent.description.isEmpty());
            QVERIFY(!agent.color.isEmpty());
            if (agent.icon == QStringLiteral("doc.text")) {
                docTextTitles.append(agent.title);
            }
            QCOMPARE(AssistantCatalogue::agent(agent.title)->id, agent.id);
        }
        QCOMPARE(titles.size(), 25);
        QCOMPARE(ids.size(), 25);
        QCOMPARE(docTextTitles,
            QStringList({ QStringLiteral("Business Plan Generator"), QStringLiteral("Documentation Explainer"),
                QStringLiteral("Job Description Generator") }));
        // Sharing a symbol, the three still open three different generators.
        QSet<const AssistantFamily *> families;
        for (const QString &title : docTextTitles) {
            families.insert(AssistantCatalogue::resolve(title).family);
        }
        QCOMPARE(families.size(), 3);
    }

    void formCardsAreGeneratorKeys()
    {
        int checked = 0;
        for (const Category &category : AssistantCatalogue::categories()) {
            const AssistantFamily *family = AssistantFamily::forCategory(category.name);
            if (category.name == QStringLiteral("Tech")) {
                QCOMPARE(family, nullptr);
                continue;
            }
            QVERIFY2(family != nullptr, qPrintable(category.name));
            for (const AIAgent &agent : category.agents) {
                if (agent.title == QStringLiteral("Images and Logo Generator")) {
                    QVERIFY(!family->table().contains(agent.title));
                    continue;
                }
                QVERIFY2(family->table().contains(agent.title), qPrintable(agent.title));
                ++checked;
            }
        }
        QCOMPARE(checked, 22);
    }

    void generatorsWithoutCards()
    {
        QStringList withoutCard;
        for (const AssistantFamily *family : AssistantFamily::all()) {
            for (const QString &title : family->table().titles()) {
                if (AssistantCatalogue::agent(title) == nullptr) {
                    withoutCard.append(title);
                }
            }
        }
        QCOMPARE(withoutCard,
            QStringList({ QStringLiteral("Legal Document Generator"), QStringLiteral("Bootstrapped Marketing Plan") }));
    }

    void cardTextsMayDifferFromTheTool()
    {
        const QString title = QStringLiteral("Blog Post Writing");
        QCOMPARE(AssistantCatalogue::agent(title)->description,
            QStringLiteral("Create engaging blog posts with our blog post writing AI assistant"));
        QCOMPARE(marketingAssistants().find(title)->description,
            QStringLiteral("Create engaging blog posts with AI-powered assistance"));
    }

    void resolve_data()
    {
        using Kind = AgentDestination::Kind;
        QTest::addColumn<QString>("title");
        QTest::addColumn<Kind>("kind");
        QTest::addColumn<QString>("family");

        QTest::newRow("marketing card") << "Slogan Generator" << Kind::FormGenerator << "marketing";
        QTest::newRow("marketing assistant without card")
            << "Bootstrapped Marketing Plan" << Kind::FormGenerator << "marketing";
        QTest::newRow("sales card") << "Value Proposition Builder" << Kind::FormGenerator << "sales";
        QTest::newRow("support card") << "Documentation Explainer" << Kind::FormGenerator << "customer-support";
        QTest::newRow("hr card") << "Employee Survey Generator" << Kind::FormGenerator << "human-resources";
        QTest::newRow("image studio") << "Images and Logo Generator" << Kind::ImageStudio << "";
        QTest::newRow("debugger") << "Code Debugger" << Kind::CodeDebugger << "";
        QTest::newRow("sample data") << "Sample Data Generator" << Kind::SampleDataGenerator << "";
        QTest::newRow("unknown title") << "Podcast Planner" << Kind::AgentDetail << "";
        QTest::newRow("empty title") << "" << Kind::AgentDetail << "";
        QTest::newRow("case differs") << "slogan generator" << Kind::AgentDetail << "";
    }

    void resolve()
    {
        QFETCH(QString, title);
        QFETCH(AgentDestination::Kind, kind);
        QFETCH(QString, family);

        const AgentDestination destination = AssistantCatalogue::resolve(title);
        QCOMPARE(destination.kind, kind);
        QCOMPARE(destination.title, title);
        QCOMPARE(destination.family == nullptr ? QString() : destination.family->identifier(), family);
        if (destination.family != nullptr) {
            // The preselected title must be one the generator's composer knows.
            QVERIFY(!destination.family->composePrompt(destination.title, {}).isEmpty());
        }
    }

    void everyCardOpensSomething()
    {
        for (const AIAgent &agent : AssistantCatalogue::allAgents()) {
            QVERIFY2(AssistantCatalogue::resolve(agent.title).kind != AgentDestination::Kind::AgentDetail,
                qPrintable(agent.title));
        }
    }

    void promptOptionsOpenATool()
    {
        const QStringList standaloneTools = { QStringLiteral("Ask Me Anything"), QStringLiteral("Chat With Your PDFs"),
            QStringLiteral("Voice Notes"), QStringLiteral("Image Creation Studio") };
        QStringList destinations;
        QSet<QUuid> ids;
        for (const PromptOption &option : AssistantCatalogue::promptOptions()) {
            destinations.append(option.destination);
            ids.insert(option.id);
            QVERIFY(!option.text.isEmpty());
            QVERIFY(!option.icon.isEmpty());
            QVERIFY2(standaloneTools.contains(option.destination)
                    || AssistantCatalogue::category(option.destination) != nullptr,
                qPrintable(option.destination));
        }
        QCOMPARE(destinations,
            QStringList({ QStringLiteral("Ask Me Anything"), QStringLiteral("Chat With Your PDFs"),
                QStringLiteral("Voice Notes"), QStringLiteral("Marketing") }));
        QCOMPARE(ids.size(), 4);
    }

    void familyDescriptors_data()
    {
        QTest::addColumn<QString>("identifier");
        QTest::addColumn<QString>("heading");
        QTest::addColumn<bool>("checksModelAndKey");
        QTest::addColumn<bool>("confirmsPersonalInformation");
        QTest::addColumn<QString>("pickerPrompt");

        QTest::newRow("marketing") << "marketing"
                                   << "Category" << true << true << "Select a category";
        QTest::newRow("sales") << "sales"
                               << "Category" << true << true << "Select a category";
        QTest::newRow("support") << "customer-support"
                                 << "Agent" << false << false << "Select a support agent";
        QTest::newRow("hr") << "human-resources"
                            << "Agent" << true << true << "Select an HR agent";
    }

    void familyDescriptors()
    {
        QFETCH(QString, identifier);
        QFETCH(QString, heading);
        QFETCH(bool, checksModelAndKey);
        QFETCH(bool, confirmsPersonalInformation);
        QFETCH(QString, pickerPrompt);

        const AssistantFamily *family = AssistantFamily::forIdentifier(identifier);
        QVERIFY(family != nullptr);
        QCOMPARE(family->headingWord(), heading);
        QCOMPARE(family->checksModelAndKey(), checksModelAndKey);
        QCOMPARE(family->confirmsPersonalInformation(), confirmsPersonalInformation);
        QCOMPARE(family->pickerPrompt(), pickerPrompt);
        QCOMPARE(&AssistantFamily::get(family->id()), family);
        QCOMPARE(AssistantFamily::forCategory(family->name()), family);
    }

    void unknownFamilyNames()
    {
        QCOMPARE(AssistantFamily::forIdentifier(QStringLiteral("tech")), nullptr);
        QCOMPARE(AssistantFamily::forCategory(QStringLiteral("marketing")), nullptr);
        QCOMPARE(AssistantFamily::containing(QStringLiteral("Code Debugger")), nullptr);
    }
};

ZENTRIK_TEST(AssistantCatalogueTest)
#include "tst_assistantcatalogue.moc"
