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
    // Cards are told apart by title, and every card opens a tool: a form card the generator
    // of its category, which knows the title.
    void everyCardOpensATool()
    {
        QSet<QString> titles;
        QSet<QUuid> ids;
        for (const Category &category : AssistantCatalogue::categories()) {
            QVERIFY(!category.id.isNull() && !category.icon.isEmpty());
            for (const AIAgent &agent : category.agents) {
                titles.insert(agent.title);
                ids.insert(agent.id);
                QVERIFY(!agent.description.isEmpty() && !agent.color.isEmpty());
                QCOMPARE(AssistantCatalogue::agent(agent.title)->id, agent.id);
                const AgentDestination destination = AssistantCatalogue::resolve(agent.title);
                QVERIFY2(destination.kind != AgentDestination::Kind::AgentDetail, qPrintable(agent.title));
                if (destination.kind == AgentDestination::Kind::FormGenerator) {
                    QCOMPARE(destination.family, AssistantFamily::forCategory(category.name));
                    QVERIFY2(destination.family->table().contains(agent.title), qPrintable(agent.title));
                }
            }
        }
        QCOMPARE(titles.size(), AssistantCatalogue::allAgents().size());
        QCOMPARE(ids.size(), titles.size());
    }

    void resolve_data()
    {
        using Kind = AgentDestination::Kind;
        QTest::addColumn<QString>("title");
        QTest::addColumn<Kind>("kind");
        QTest::addColumn<QString>("family");

        QTest::newRow("marketing assistant without card")
            << "Bootstrapped Marketing Plan" << Kind::FormGenerator << "marketing";
        QTest::newRow("support card") << "Documentation Explainer" << Kind::FormGenerator << "customer-support";
        QTest::newRow("image studio") << "Images and Logo Generator" << Kind::ImageStudio << "";
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

    void promptOptionsOpenATool()
    {
        const QStringList standaloneTools = { QStringLiteral("Ask Me Anything"), QStringLiteral("Chat With Your PDFs"),
            QStringLiteral("Voice Notes"), QStringLiteral("Image Creation Studio") };
        QSet<QUuid> ids;
        for (const PromptOption &option : AssistantCatalogue::promptOptions()) {
            ids.insert(option.id);
            QVERIFY(!option.text.isEmpty());
            QVERIFY(!option.icon.isEmpty());
            QVERIFY2(standaloneTools.contains(option.destination)
                    || AssistantCatalogue::category(option.destination) != nullptr,
                qPrintable(option.destination));
        }
        QCOMPARE(ids.size(), AssistantCatalogue::promptOptions().size());
    }
};

ZENTRIK_TEST(AssistantCatalogueTest)
#include "tst_assistantcatalogue.moc"
