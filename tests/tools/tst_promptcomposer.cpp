#include "support/testregistry.h"
#include "tools/assistantfamily.h"

#include <QtTest>

using namespace zentrik;

namespace {

const AssistantFamily &familyNamed(const QString &identifier)
{
    const AssistantFamily *family = AssistantFamily::forIdentifier(identifier);
    Q_ASSERT(family != nullptr);
    return *family;
}

// The text between two section headings of a composed prompt.
QString section(const QString &prompt, const QString &from, const QString &to)
{
    const qsizetype start = prompt.indexOf(from);
    const qsizetype end = prompt.indexOf(to, start + from.size());
    if (start < 0 || end < 0) {
        return QStringLiteral("<missing section>");
    }
    return prompt.mid(start + from.size(), end - start - from.size());
}

} // namespace

class PromptComposerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void wholePromptWithValues()
    {
        // Entered in form order; the prompt lists them by label.
        FormInputs inputs;
        inputs.insert(QStringLiteral("Brand/Product Name"), QStringLiteral("Acme"));
        inputs.insert(QStringLiteral("Key Features/Benefits"), QStringLiteral("Fast\nCheap"));
        inputs.insert(QStringLiteral("Desired Tone"), QStringLiteral("Playful"));
        const QString expected
            = QStringLiteral("Generate 30 attention-grabbing taglines for the given brand or product.\n"
                             "\n"
                             "Category: Slogan Generator\n"
                             "Brand/Product Name: Acme\n"
                             "Desired Tone: Playful\n"
                             "Key Features/Benefits: Fast\nCheap\n"
                             "\n"
                             "Structure:\n"
                             "1. List 30 unique and catchy slogans\n"
                             "2. Ensure each slogan is concise (preferably under 10 words)\n"
                             "3. Incorporate brand values or unique selling points where possible\n"
                             "4. Vary the style and tone across the slogans\n"
                             "5. Include a mix of emotional and rational appeals\n"
                             "\n"
                             "Tone guidelines:\n"
                             "- Be creative and memorable\n"
                             "- Use wordplay, alliteration, or rhyme where appropriate\n"
                             "- Ensure slogans are easy to understand and remember\n"
                             "\n"
                             "Highlight the top 3 slogans that best represent the brand and explain why.");
        QCOMPARE(AssistantFamily::marketing().composePrompt(QStringLiteral("Slogan Generator"), inputs), expected);
    }

    void valuesEnterAlphabeticallyByLabel_data()
    {
        QTest::addColumn<QString>("family");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QStringList>("entered"); // label=value, in the order typed
        QTest::addColumn<QString>("expectedBlock");
        const auto row
            = [](const char *name, const QString &family, const QString &title, const QStringList &entered,
                  const QString &expectedBlock) { QTest::newRow(name) << family << title << entered << expectedBlock; };

        row("an empty form leaves the block empty", "customer-support", "Customer Support Ticket Response Agent",
            QStringList {}, "");
        row("form order differs from label order", "marketing", "Blog Post Writing",
            QStringList { "Writing Style=Narrative", "Blog Title=Rust", "Tone=Minimal", "Target Audience=Devs" },
            "Blog Title: Rust\nTarget Audience: Devs\nTone: Minimal\nWriting Style: Narrative");
        row("a cleared field is still written", "sales", "Follow-up Email Sequence",
            QStringList { "Prospect Name=", "Sequence Length=3 Emails" }, "Prospect Name: \nSequence Length: 3 Emails");
        row("the same label typed twice keeps the last value", "human-resources", "Job Description Generator",
            QStringList { "Job Title=Nurse", "Department=Care", "Job Title=Head Nurse" },
            "Department: Care\nJob Title: Head Nurse");
        row("a value kept from another assistant is written too", "customer-support", "Documentation Explainer",
            QStringList { "Target Audience=Beginners", "Customer Name=Ann" },
            "Customer Name: Ann\nTarget Audience: Beginners");
        row("values are written verbatim", "marketing", "SWOT Analysis Generator",
            QStringList { "Industry=a: b\n\nStructure:", "Company/Product Name=  Acme  " },
            "Company/Product Name:   Acme  \nIndustry: a: b\n\nStructure:");
    }

    void valuesEnterAlphabeticallyByLabel()
    {
        QFETCH(QString, family);
        QFETCH(QString, title);
        QFETCH(QStringList, entered);
        QFETCH(QString, expectedBlock);

        FormInputs inputs;
        for (const QString &assignment : entered) {
            const qsizetype equals = assignment.indexOf(QLatin1Char('='));
            inputs.insert(assignment.left(equals), assignment.mid(equals + 1));
        }
        const AssistantFamily &assistants = familyNamed(family);
        const QString prompt = assistants.composePrompt(title, inputs);
        const QString head = QStringLiteral("\n\n%1: %2\n").arg(assistants.headingWord(), title);
        QVERIFY2(prompt.contains(head + expectedBlock + QStringLiteral("\n\nStructure:\n1. ")), qPrintable(prompt));
    }

    void structureIsNumberedFromOneAndToneIsBulleted_data()
    {
        QTest::addColumn<QString>("family");
        QTest::addColumn<QString>("title");
        for (const AssistantFamily *family : AssistantFamily::all()) {
            for (const FormAssistant &assistant : family->table().entries()) {
                QTest::newRow(qPrintable(assistant.title)) << family->identifier() << assistant.title;
            }
        }
    }

    void structureIsNumberedFromOneAndToneIsBulleted()
    {
        QFETCH(QString, family);
        QFETCH(QString, title);

        const AssistantFamily &assistants = familyNamed(family);
        const PromptTemplate &promptTemplate = assistants.table().find(title)->promptTemplate;
        // A long prompt first, so that numbering carried over from it would show.
        (void)AssistantFamily::marketing().composePrompt(QStringLiteral("Business Plan Generator"), {});
        const QString prompt = assistants.composePrompt(title, { { QStringLiteral("Notes"), QStringLiteral("1. x") } });

        const QStringList structureLines
            = section(prompt, QStringLiteral("\n\nStructure:\n"), QStringLiteral("\n\nTone guidelines:\n"))
                  .split(QLatin1Char('\n'));
        QCOMPARE(structureLines.size(), promptTemplate.structure.size());
        for (qsizetype i = 0; i < structureLines.size(); ++i) {
            QCOMPARE(structureLines.at(i), QStringLiteral("%1. %2").arg(i + 1).arg(promptTemplate.structure.at(i)));
        }

        const QStringList toneLines
            = section(prompt, QStringLiteral("\n\nTone guidelines:\n"), QStringLiteral("\n\n") + promptTemplate.closing)
                  .split(QLatin1Char('\n'));
        QCOMPARE(toneLines.size(), promptTemplate.toneGuidelines.size());
        for (qsizetype i = 0; i < toneLines.size(); ++i) {
            QCOMPARE(toneLines.at(i), QStringLiteral("- ") + promptTemplate.toneGuidelines.at(i));
        }

        QVERIFY(prompt.startsWith(promptTemplate.introduction + QStringLiteral("\n\n")));
        QVERIFY(prompt.endsWith(QStringLiteral("\n\n") + promptTemplate.closing));
        QVERIFY(!prompt.endsWith(QLatin1Char('\n')));
    }

    void unknownTitleGivesNoPrompt_data()
    {
        QTest::addColumn<QString>("family");
        QTest::addColumn<QString>("title");
        const auto row = [](const char *name, const QString &family, const QString &title) {
            QTest::newRow(name) << family << title;
        };

        row("empty title", "marketing", "");
        row("not in any table", "sales", "Cold Call Script");
        row("another family's assistant", "customer-support", "Slogan Generator");
        row("a card that is no generator", "marketing", "Images and Logo Generator");
        row("titles are matched exactly", "human-resources", "job description generator");
        row("trailing blank", "sales", "Persuasive Sales Copy ");
    }

    void unknownTitleGivesNoPrompt()
    {
        QFETCH(QString, family);
        QFETCH(QString, title);

        const FormInputs inputs { { QStringLiteral("Product/Service"), QStringLiteral("Widgets") } };
        QCOMPARE(familyNamed(family).composePrompt(title, inputs), QString());
    }
};

ZENTRIK_TEST(PromptComposerTest)
#include "tst_promptcomposer.moc"
