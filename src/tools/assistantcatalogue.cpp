#include "assistantcatalogue.h"

#include "assistantfamily.h"

#include <QCoreApplication>
#include <QHash>

namespace zentrik {

namespace {

AIAgent card(const char *icon, const char *title, const char *color, const char *description)
{
    return { .id = QUuid::createUuid(),
        .icon = QString::fromUtf8(icon),
        .title = QString::fromUtf8(title),
        .description = QString::fromUtf8(description),
        .color = QString::fromUtf8(color) };
}

QList<Category> buildCategories()
{
    QList<Category> categories;
    categories.append({ QUuid::createUuid(), QStringLiteral("Marketing"), QStringLiteral("megaphone"),
        {
            card("pencil", "Blog Post Writing", "yellow",
                "Create engaging blog posts with our blog post writing AI assistant"),
            card("lightbulb", "Images and Logo Generator", "purple", "Design unique images and logos for your brand"),
            card("person.fill.viewfinder", "User Persona Generator", "red",
                "Quickly identify your ideal customer without conducting dozens of interviews"),
            card("bolt", "Value Proposition Generator", "indigo",
                "Develop a clear action plan to transform your idea into a profitable business"),
            card("briefcase", "Business Ideas Generator", "pink",
                "Receive 10 unique and profitable business ideas to kickstart your entrepreneurial journey"),
            card("message.square", "Marketing Problem Solver", "teal",
                "Get 10 creative solutions to overcome any marketing challenge"),
            card("text.quote", "Slogan Generator", "orange",
                "Generate 30 attention-grabbing taglines to captivate your audience"),
            card("chart.bar", "Business Idea Validator", "cyan",
                "Obtain honest feedback on the viability of your business idea"),
            card("doc.text", "Business Plan Generator", "green",
                "Unlock 10 key marketing strategies to accelerate your path to profitability"),
            card("lightbulb.fill", "Content Ideas Generator", "yellow",
                "Discover 12 unique content ideas to promote your product organically"),
            card("chart.pie", "SWOT Analysis Generator", "blue",
                "Conduct market research to shape your business strategy with a detailed SWOT analysis"),
            card("cart", "Product Description Generator", "purple",
                "Craft compelling product descriptions effortlessly"),
        } });
    categories.append({ QUuid::createUuid(), QStringLiteral("Sales"), QStringLiteral("dollarsign.circle"),
        {
            card("text.word.spacing", "Persuasive Sales Copy", "blue",
                "Craft compelling sales copy that converts prospects into customers"),
            card("message", "Customized Sales Pitch", "green",
                "Generate tailored sales pitches that resonate with your specific prospects"),
            card("hand.thumbsup", "Objection Handling Scripts", "orange",
                "Create effective responses to common sales objections"),
            card("envelope", "Follow-up Email Sequence", "purple",
                "Generate a series of follow-up emails to nurture leads and close deals"),
            card("target", "Value Proposition Builder", "red",
                "Craft compelling value propositions that resonate with your target market"),
            card("rectangle.3.offgrid", "Sales Presentation Outline", "indigo",
                "Structure impactful sales presentations that guide prospects to a buying decision"),
        } });
    categories.append(
        { QUuid::createUuid(), QStringLiteral("Customer Support"), QStringLiteral("bubble.left.and.bubble.right"),
            {
                card("headphones", "Customer Support Ticket Response Agent", "indigo",
                    "AI-powered support agent to craft responses"),
                card("doc.text", "Documentation Explainer", "pink",
                    "Simplify complex documentation for easy understanding"),
            } });
    categories.append({ QUuid::createUuid(), QStringLiteral("Tech"), QStringLiteral("laptopcomputer"),
        {
            card("ladybug", "Code Debugger", "blue", "Debug your code efficiently with AI assistance"),
            card("square.stack.3d.up", "Sample Data Generator", "green",
                "Generate sample data for your projects in multiple formats"),
        } });
    categories.append({ QUuid::createUuid(), QStringLiteral("Human Resources"), QStringLiteral("person.2"),
        {
            card("person.2.fill", "Interactive Employee Training Agent", "orange",
                "Create interactive training sessions for employees"),
            card("doc.text", "Job Description Generator", "teal", "Generate compelling job descriptions and postings"),
            card("list.bullet.clipboard", "Employee Survey Generator", "cyan",
                "Create effective surveys to gather employee feedback"),
        } });
    return categories;
}

PromptOption option(const char *icon, const char *text, const char *destination)
{
    return { QUuid::createUuid(), QString::fromUtf8(icon),
        QCoreApplication::translate("zentrik::AssistantCatalogue", text), QString::fromUtf8(destination) };
}

} // namespace

const QList<Category> &AssistantCatalogue::categories()
{
    static const QList<Category> categories = buildCategories();
    return categories;
}

const Category *AssistantCatalogue::category(const QString &name)
{
    for (const Category &entry : categories()) {
        if (entry.name == name) {
            return &entry;
        }
    }
    return nullptr;
}

const AIAgent *AssistantCatalogue::agent(const QString &title)
{
    for (const Category &entry : categories()) {
        for (const AIAgent &candidate : entry.agents) {
            if (candidate.title == title) {
                return &candidate;
            }
        }
    }
    return nullptr;
}

QList<AIAgent> AssistantCatalogue::allAgents()
{
    QList<AIAgent> agents;
    for (const Category &entry : categories()) {
        agents.append(entry.agents);
    }
    return agents;
}

QString AssistantCatalogue::showcaseHeading()
{
    return QCoreApplication::translate("zentrik::AssistantCatalogue", "Your Available AI Assistants (24)");
}

const QList<PromptOption> &AssistantCatalogue::promptOptions()
{
    static const QList<PromptOption> options = {
        option("lightbulb.fill",
            QT_TRANSLATE_NOOP("zentrik::AssistantCatalogue", "Get answers or creative ideas on any topic."),
            "Ask Me Anything"),
        option("doc.text.magnifyingglass",
            QT_TRANSLATE_NOOP("zentrik::AssistantCatalogue", "Chat with your files to gain insights quickly."),
            "Chat With Your PDFs"),
        option("mic.fill",
            QT_TRANSLATE_NOOP("zentrik::AssistantCatalogue", "Create voice notes and get AI-generated summaries."),
            "Voice Notes"),
        option("bolt.fill",
            QT_TRANSLATE_NOOP("zentrik::AssistantCatalogue", "Explore marketing strategies and content ideas."),
            "Marketing"),
    };
    return options;
}

AgentDestination AssistantCatalogue::resolve(const QString &title)
{
    using Kind = AgentDestination::Kind;
    if (const AssistantFamily *family = AssistantFamily::containing(title)) {
        return { Kind::FormGenerator, family, title };
    }
    static const QHash<QString, Kind> tools = {
        { QStringLiteral("Images and Logo Generator"), Kind::ImageStudio },
        { QStringLiteral("Code Debugger"), Kind::CodeDebugger },
        { QStringLiteral("Sample Data Generator"), Kind::SampleDataGenerator },
    };
    return { tools.value(title, Kind::AgentDetail), nullptr, title };
}

} // namespace zentrik
