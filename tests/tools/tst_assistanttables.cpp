#include "support/testregistry.h"
#include "tools/assistantfamily.h"

#include <QtTest>

#include <QSet>

using namespace zentrik;

namespace {

const FormAssistant *anyAssistant(const QString &title)
{
    const AssistantFamily *family = AssistantFamily::containing(title);
    return family == nullptr ? nullptr : family->table().find(title);
}

} // namespace

class AssistantTablesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tableSizes_data()
    {
        QTest::addColumn<QString>("family");
        QTest::addColumn<int>("expected");
        QTest::newRow("marketing") << "marketing" << 13;
        QTest::newRow("sales") << "sales" << 6;
        QTest::newRow("customer support") << "customer-support" << 2;
        QTest::newRow("human resources") << "human-resources" << 3;
    }

    void tableSizes()
    {
        QFETCH(QString, family);
        QFETCH(int, expected);
        const AssistantFamily *assistants = AssistantFamily::forIdentifier(family);
        QVERIFY(assistants != nullptr);
        QCOMPARE(assistants->table().size(), expected);
        QCOMPARE(assistants->table().titles().size(), expected);
        for (const QString &title : assistants->table().titles()) {
            QVERIFY(assistants->table().find(title) != nullptr);
            QCOMPARE(assistants->table().find(title)->title, title);
        }
    }

    void structureLengths_data()
    {
        QTest::addColumn<QString>("title");
        QTest::addColumn<int>("expected");
        const QHash<QString, int> special = {
            { QStringLiteral("Business Plan Generator"), 9 },
            { QStringLiteral("Bootstrapped Marketing Plan"), 7 },
            { QStringLiteral("Legal Document Generator"), 6 },
            { QStringLiteral("Persuasive Sales Copy"), 6 },
            { QStringLiteral("Customized Sales Pitch"), 6 },
            { QStringLiteral("Sales Presentation Outline"), 7 },
        };
        // Every other marketing, sales and support structure has five items; HR has six.
        for (const AssistantFamily *family : AssistantFamily::all()) {
            const int usual = family == &AssistantFamily::humanResources() ? 6 : 5;
            for (const QString &title : family->table().titles()) {
                QTest::newRow(qPrintable(title)) << title << special.value(title, usual);
            }
        }
    }

    void structureLengths()
    {
        QFETCH(QString, title);
        QFETCH(int, expected);
        QCOMPARE(anyAssistant(title)->promptTemplate.structure.size(), expected);
    }

    void fieldCounts_data()
    {
        QTest::addColumn<QString>("title");
        QTest::addColumn<int>("expected");
        QTest::newRow("ticket agent") << "Customer Support Ticket Response Agent" << 4;
        QTest::newRow("documentation") << "Documentation Explainer" << 3;
        QTest::newRow("training") << "Interactive Employee Training Agent" << 5;
        QTest::newRow("job description") << "Job Description Generator" << 5;
        QTest::newRow("survey") << "Employee Survey Generator" << 5;
        QTest::newRow("blog") << "Blog Post Writing" << 5;
        QTest::newRow("persona") << "User Persona Generator" << 4;
        QTest::newRow("value proposition generator") << "Value Proposition Generator" << 4;
        QTest::newRow("validator") << "Business Idea Validator" << 4;
        QTest::newRow("business plan") << "Business Plan Generator" << 5;
        QTest::newRow("content ideas") << "Content Ideas Generator" << 4;
        QTest::newRow("legal") << "Legal Document Generator" << 5;
        QTest::newRow("bootstrapped") << "Bootstrapped Marketing Plan" << 5;
        QTest::newRow("swot") << "SWOT Analysis Generator" << 4;
        QTest::newRow("product description") << "Product Description Generator" << 5;
        QTest::newRow("sales copy") << "Persuasive Sales Copy" << 5;
        QTest::newRow("pitch") << "Customized Sales Pitch" << 5;
        QTest::newRow("objections") << "Objection Handling Scripts" << 4;
        QTest::newRow("follow-up") << "Follow-up Email Sequence" << 5;
        QTest::newRow("value proposition builder") << "Value Proposition Builder" << 5;
        QTest::newRow("presentation") << "Sales Presentation Outline" << 5;
    }

    void fieldCounts()
    {
        QFETCH(QString, title);
        QFETCH(int, expected);
        const FormAssistant *assistant = anyAssistant(title);
        QVERIFY(assistant != nullptr);
        QCOMPARE(assistant->inputs.size(), expected);
    }

    void everyFormIsWellFormed_data()
    {
        QTest::addColumn<QString>("title");
        for (const AssistantFamily *family : AssistantFamily::all()) {
            for (const QString &title : family->table().titles()) {
                QTest::newRow(qPrintable(title)) << title;
            }
        }
    }

    void everyFormIsWellFormed()
    {
        QFETCH(QString, title);
        const FormAssistant *assistant = anyAssistant(title);
        QVERIFY(!assistant->id.isNull());
        QVERIFY(!assistant->description.isEmpty());
        QVERIFY(!assistant->promptTemplate.introduction.isEmpty());
        QVERIFY(!assistant->promptTemplate.closing.isEmpty());
        QVERIFY(assistant->promptTemplate.toneGuidelines.size() >= 2);

        QSet<QString> labels;
        QSet<QUuid> ids;
        for (const InputField &field : assistant->inputs) {
            // Values are keyed by label, so a repeated label would merge two fields.
            QVERIFY2(!labels.contains(field.label), qPrintable(field.label));
            labels.insert(field.label);
            QVERIFY(!field.label.isEmpty());
            QVERIFY(!field.id.isNull());
            QVERIFY(!ids.contains(field.id));
            ids.insert(field.id);
            const bool isSelect = field.type == InputField::Type::Select;
            QCOMPARE(field.options.isEmpty(), !isSelect);
            if (isSelect) {
                QVERIFY(field.placeholder.isEmpty());
                QCOMPARE(QSet<QString>(field.options.cbegin(), field.options.cend()).size(), field.options.size());
            }
            QCOMPARE(InputField::typeFromName(field.typeName()), std::optional(field.type));
        }
    }

    void fieldsWithoutPlaceholder()
    {
        // Free-entry fields that show no placeholder; every other one has its own.
        const QSet<QString> expected = {
            QStringLiteral("Value Proposition Generator/Product/Service"),
            QStringLiteral("Value Proposition Generator/Target Market"),
            QStringLiteral("Slogan Generator/Target Audience"),
            QStringLiteral("Content Ideas Generator/Product/Service"),
            QStringLiteral("Content Ideas Generator/Target Audience"),
            QStringLiteral("Legal Document Generator/Business Name"),
            QStringLiteral("Bootstrapped Marketing Plan/Target Audience"),
            QStringLiteral("SWOT Analysis Generator/Industry"),
            QStringLiteral("Follow-up Email Sequence/Prospect Name"),
            QStringLiteral("Follow-up Email Sequence/Product/Service"),
            QStringLiteral("Value Proposition Builder/Target Market"),
            QStringLiteral("Sales Presentation Outline/Prospect/Company Name"),
        };
        QSet<QString> found;
        for (const AssistantFamily *family : AssistantFamily::all()) {
            for (const FormAssistant &assistant : family->table().entries()) {
                for (const InputField &field : assistant.inputs) {
                    if (field.type != InputField::Type::Select && field.placeholder.isEmpty()) {
                        found.insert(assistant.title + QLatin1Char('/') + field.label);
                    }
                }
            }
        }
        QCOMPARE(found, expected);
    }

    void titlesAndIdsAreUniqueAcrossFamilies()
    {
        QSet<QString> titles;
        QSet<QUuid> ids;
        int total = 0;
        for (const AssistantFamily *family : AssistantFamily::all()) {
            for (const FormAssistant &assistant : family->table().entries()) {
                titles.insert(assistant.title);
                ids.insert(assistant.id);
                ++total;
                QCOMPARE(AssistantFamily::containing(assistant.title), family);
            }
        }
        QCOMPARE(total, 24);
        QCOMPARE(titles.size(), total);
        QCOMPARE(ids.size(), total);
    }

    void marketingColours()
    {
        QHash<QString, int> uses;
        for (const FormAssistant &assistant : marketingAssistants().entries()) {
            ++uses[assistant.color];
        }
        QCOMPARE(uses.value(QStringLiteral("yellow")), 2);
        QCOMPARE(uses.value(QStringLiteral("orange")), 2);
        QCOMPARE(uses.value(QStringLiteral("purple")), 2);
        for (auto it = uses.cbegin(); it != uses.cend(); ++it) {
            if (it.key() != QStringLiteral("yellow") && it.key() != QStringLiteral("orange")
                && it.key() != QStringLiteral("purple")) {
                QCOMPARE(it.value(), 1);
            }
        }
    }

    void coloursAndIconsAreNamed()
    {
        const QSet<QString> displayColours = {
            QStringLiteral("yellow"),
            QStringLiteral("purple"),
            QStringLiteral("red"),
            QStringLiteral("indigo"),
            QStringLiteral("pink"),
            QStringLiteral("teal"),
            QStringLiteral("orange"),
            QStringLiteral("cyan"),
            QStringLiteral("green"),
            QStringLiteral("blue"),
        };
        for (const AssistantFamily *family : AssistantFamily::all()) {
            // Only the support and HR records carry a symbol.
            const bool hasIcons
                = family == &AssistantFamily::customerSupport() || family == &AssistantFamily::humanResources();
            for (const FormAssistant &assistant : family->table().entries()) {
                QVERIFY2(displayColours.contains(assistant.color), qPrintable(assistant.title));
                QCOMPARE(!assistant.icon.isEmpty(), hasIcons);
            }
        }
    }

    void oddShapesOfTheSalesForms()
    {
        const FormAssistant *objections = salesAssistants().find(QStringLiteral("Objection Handling Scripts"));
        QVERIFY(objections != nullptr);
        QCOMPARE(objections->inputs.first().type, InputField::Type::Select);

        QStringList selectsOfferingDemo;
        for (const FormAssistant &assistant : salesAssistants().entries()) {
            for (const InputField &field : assistant.inputs) {
                if (field.options.contains(QStringLiteral("Demo-focused"))) {
                    selectsOfferingDemo.append(field.label);
                }
            }
        }
        QCOMPARE(
            selectsOfferingDemo, QStringList({ QStringLiteral("Pitch Style"), QStringLiteral("Presentation Style") }));

        // Five emails in the structure whatever length is chosen.
        const FormAssistant *followUp = salesAssistants().find(QStringLiteral("Follow-up Email Sequence"));
        QVERIFY(followUp->field(QStringLiteral("Sequence Length"))->options.contains(QStringLiteral("7 Emails")));
        QCOMPARE(followUp->promptTemplate.structure.size(), 5);
    }

    void supportIsSearchedByTitle()
    {
        const AssistantTable &support = customerSupportAgents();
        QCOMPARE(support.titles(),
            QStringList({ QStringLiteral("Customer Support Ticket Response Agent"),
                QStringLiteral("Documentation Explainer") }));
        QCOMPARE(support.find(QStringLiteral("Documentation explainer")), nullptr);
        QCOMPARE(support.find(QString()), nullptr);
        QCOMPARE(support.find(QStringLiteral("Job Description Generator")), nullptr);
    }

    void tablesAreBuiltOnce()
    {
        QCOMPARE(&marketingAssistants(), &marketingAssistants());
        QCOMPARE(&AssistantFamily::humanResources().table(), &hrAgents());
        // Ids are made while building; equal ids on a second look mean no second build.
        const QUuid first = salesAssistants().entries().first().id;
        QCOMPARE(salesAssistants().entries().first().id, first);
        QCOMPARE(AssistantFamily::sales().table().find(QStringLiteral("Persuasive Sales Copy"))->id, first);
    }
};

ZENTRIK_TEST(AssistantTablesTest)
#include "tst_assistanttables.moc"
