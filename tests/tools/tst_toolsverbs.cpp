#include "support/clirunner.h"
#include "support/testregistry.h"
#include "tools/assistantcatalogue.h"
#include "tools/assistantfamily.h"

#include <QtTest>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace zentrik;

using Run = CliText;

class ToolsVerbsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void promptMatchesTheLibrary_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QStringList>("values"); // label=value as the composer receives them

        QTest::newRow("no fields") << QStringList { "Job Description Generator" } << "Job Description Generator"
                                   << QStringList {};
        QTest::newRow("several fields, last one wins")
            << QStringList { "Customer Support Ticket Response Agent", "--field", "Priority=High", "--field",
                   "Customer Name=Ann Lee", "--field", "Priority=Urgent" }
            << "Customer Support Ticket Response Agent" << QStringList { "Customer Name=Ann Lee", "Priority=Urgent" };
        QTest::newRow("title, label and option in any case")
            << QStringList { "persuasive sales copy", "--field", "tone=luxurious", "--field", "KEY FEATURES=Soft" }
            << "Persuasive Sales Copy" << QStringList { "Key Features=Soft", "Tone=Luxurious" };
        QTest::newRow("multi-line value") << QStringList { "Blog Post Writing", "--field", "Blog Outline=one\ntwo" }
                                          << "Blog Post Writing" << QStringList { "Blog Outline=one\ntwo" };
    }

    void promptMatchesTheLibrary()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, title);
        QFETCH(QStringList, values);

        FormInputs inputs;
        for (const QString &assignment : values) {
            const qsizetype equals = assignment.indexOf(QLatin1Char('='));
            inputs.insert(assignment.left(equals), assignment.mid(equals + 1));
        }
        const QString expected = AssistantFamily::containing(title)->composePrompt(title, inputs);
        QVERIFY(!expected.isEmpty());

        const Run run = runCli(QStringList { QStringLiteral("prompt") } + arguments);
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(run.out, expected + QLatin1Char('\n'));
    }

    void promptUsageErrors_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QStringList>("mentioned"); // texts the one-line message must name

        QTest::newRow("unknown title with a near match")
            << QStringList { "Slogans" } << QStringList { "\"Slogans\"", "\"Slogan Generator\"" };
        QTest::newRow("unknown title") << QStringList { "Weather Report" }
                                       << QStringList { "\"Weather Report\"", "zentrik-cli assistants" };
        QTest::newRow("a card that is no form")
            << QStringList { "Code Debugger" } << QStringList { "\"Code Debugger\"" };
        QTest::newRow("unknown field") << QStringList { "Slogan Generator", "--field", "Brand=Acme" }
                                       << QStringList { "\"Brand\"", "\"Brand/Product Name\"",
                                              "\"Key Features/Benefits\"", "\"Target Audience\"", "\"Desired Tone\"" };
        QTest::newRow("option not offered") << QStringList { "Slogan Generator", "--field", "Desired Tone=Funny" }
                                            << QStringList { "\"Funny\"", "\"Playful\"", "\"Inspirational\"" };
        QTest::newRow("field without value")
            << QStringList { "Slogan Generator", "--field", "Acme" } << QStringList { "LABEL=VALUE" };
        QTest::newRow("missing title") << QStringList {} << QStringList { "title" };
        QTest::newRow("unknown option") << QStringList { "Slogan Generator", "--model", "x" }
                                        << QStringList { "model" };
    }

    void promptUsageErrors()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QStringList, mentioned);

        const Run run = runCli(QStringList { QStringLiteral("prompt") } + arguments);
        QCOMPARE(run.exitCode, 2);
        QCOMPARE(run.out, QString());
        QVERIFY2(run.err.endsWith(QLatin1Char('\n')) && run.err.count(QLatin1Char('\n')) == 1, qPrintable(run.err));
        for (const QString &text : mentioned) {
            QVERIFY2(run.err.contains(text), qPrintable(run.err));
        }
    }

    void assistantsAsJson()
    {
        const Run run = runCli({ QStringLiteral("assistants"), QStringLiteral("--json") });
        QCOMPARE(run.exitCode, 0);
        QJsonParseError error {};
        const QJsonObject root = QJsonDocument::fromJson(run.out.toUtf8(), &error).object();
        QCOMPARE(error.error, QJsonParseError::NoError);
        QCOMPARE(root.value(QStringLiteral("showcaseHeading")).toString(), AssistantCatalogue::showcaseHeading());

        const QJsonArray categories = root.value(QStringLiteral("categories")).toArray();
        QCOMPARE(categories.size(), 5);
        QStringList cardTitles;
        QHash<QString, QString> opens;
        for (const QJsonValue &category : categories) {
            for (const QJsonValue &agent : category.toObject().value(QStringLiteral("agents")).toArray()) {
                const QJsonObject card = agent.toObject();
                cardTitles.append(card.value(QStringLiteral("title")).toString());
                opens.insert(cardTitles.last(), card.value(QStringLiteral("opens")).toString());
            }
        }
        QStringList expectedTitles;
        for (const AIAgent &agent : AssistantCatalogue::allAgents()) {
            expectedTitles.append(agent.title);
        }
        QCOMPARE(cardTitles, expectedTitles);
        QCOMPARE(opens.value(QStringLiteral("Images and Logo Generator")), QStringLiteral("image-studio"));
        QCOMPARE(opens.value(QStringLiteral("Documentation Explainer")), QStringLiteral("customer-support"));
        QCOMPARE(opens.value(QStringLiteral("Code Debugger")), QStringLiteral("code-debugger"));

        // A form's fields as the form lists them, options included.
        const QJsonArray families = root.value(QStringLiteral("families")).toArray();
        QCOMPARE(families.size(), 4);
        const AssistantFamily &marketing = *AssistantFamily::forIdentifier(QStringLiteral("marketing"));
        const QJsonObject first = families.at(0).toObject();
        QCOMPARE(first.value(QStringLiteral("id")).toString(), marketing.identifier());
        QCOMPARE(first.value(QStringLiteral("checksModelAndKey")).toBool(), marketing.checksModelAndKey());
        const FormAssistant &assistant = marketing.table().entries().first();
        const QJsonObject form = first.value(QStringLiteral("assistants")).toArray().first().toObject();
        QCOMPARE(form.value(QStringLiteral("title")).toString(), assistant.title);
        const QJsonArray fields = form.value(QStringLiteral("fields")).toArray();
        QCOMPARE(fields.size(), assistant.inputs.size());
        for (qsizetype f = 0; f < fields.size(); ++f) {
            const QJsonObject field = fields.at(f).toObject();
            QCOMPARE(field.value(QStringLiteral("label")).toString(), assistant.inputs.at(f).label);
            QCOMPARE(field.value(QStringLiteral("type")).toString(), assistant.inputs.at(f).typeName());
            QCOMPARE(field.value(QStringLiteral("options")).toArray().size(), assistant.inputs.at(f).options.size());
        }
    }

    void assistantsAsText()
    {
        const Run run = runCli({ QStringLiteral("assistants") });
        QCOMPARE(run.exitCode, 0);
        QVERIFY(run.out.startsWith(AssistantCatalogue::showcaseHeading() + QLatin1Char('\n')));
        const Category &category = AssistantCatalogue::categories().first();
        const AIAgent &agent = category.agents.first();
        QVERIFY(
            run.out.contains(QStringLiteral("\n%1\n  %2 - %3\n").arg(category.name, agent.title, agent.description)));
        // Cards and forms may share title and description; the form's fields follow its title
        // below the family's header, in form order.
        const AssistantFamily *family = AssistantFamily::all().last();
        const qsizetype header
            = run.out.indexOf(QStringLiteral("\n%1 assistants (%2)\n").arg(family->name()).arg(family->table().size()));
        QVERIFY2(header > 0, qPrintable(family->name()));
        const FormAssistant &assistant = family->table().entries().last();
        const QString block = QStringLiteral("  %1 - %2\n").arg(assistant.title, assistant.description);
        qsizetype from = run.out.indexOf(block, header);
        QVERIFY2(from >= 0, qPrintable(assistant.title));
        from += block.size();
        for (const InputField &field : assistant.inputs) {
            const QString line = QStringLiteral("    - %1 (%2)").arg(field.label, field.typeName());
            QCOMPARE(run.out.indexOf(line, from), from);
            from = run.out.indexOf(QLatin1Char('\n'), from) + 1;
        }
    }

    void assistantsRejectsArguments()
    {
        const Run run = runCli({ QStringLiteral("assistants"), QStringLiteral("Marketing") });
        QCOMPARE(run.exitCode, 2);
        QCOMPARE(run.out, QString());
        QVERIFY(!run.err.isEmpty());
    }
};

ZENTRIK_TEST(ToolsVerbsTest)
#include "tst_toolsverbs.moc"
