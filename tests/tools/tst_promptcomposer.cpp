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
        // A long prompt first, so that numbering carried over from it would show.
        (void)AssistantFamily::marketing().composePrompt(QStringLiteral("Business Plan Generator"), {});
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
        row("the same label typed twice keeps the last value", "human-resources", "Job Description Generator",
            QStringList { "Job Title=Nurse", "Department=Care", "Job Title=Head Nurse" },
            "Department: Care\nJob Title: Head Nurse");
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

    void unknownTitleGivesNoPrompt_data()
    {
        QTest::addColumn<QString>("family");
        QTest::addColumn<QString>("title");
        const auto row = [](const char *name, const QString &family, const QString &title) {
            QTest::newRow(name) << family << title;
        };

        row("not in any table", "sales", "Cold Call Script");
        row("another family's assistant", "customer-support", "Slogan Generator");
        row("titles are matched exactly", "human-resources", "job description generator");
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
