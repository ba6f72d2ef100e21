// zentrik-cli assistants [--json]: the catalogue's categories and cards, then every
// form-driven assistant with its fields.
#include "verb.h"
#include "verbs.h"

#include "tools/assistantcatalogue.h"
#include "tools/assistantfamily.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace zentrik;
using namespace zentrik::cli;

namespace {

QString destinationName(const AgentDestination &destination)
{
    switch (destination.kind) {
    case AgentDestination::Kind::FormGenerator:
        return destination.family->identifier();
    case AgentDestination::Kind::ImageStudio:
        return QStringLiteral("image-studio");
    case AgentDestination::Kind::CodeDebugger:
        return QStringLiteral("code-debugger");
    case AgentDestination::Kind::SampleDataGenerator:
        return QStringLiteral("sample-data-generator");
    case AgentDestination::Kind::AgentDetail:
        break;
    }
    return QStringLiteral("agent-detail");
}

QJsonObject fieldJson(const InputField &field)
{
    QJsonObject object { { QStringLiteral("type"), field.typeName() }, { QStringLiteral("label"), field.label } };
    if (!field.placeholder.isEmpty()) {
        object.insert(QStringLiteral("placeholder"), field.placeholder);
    }
    if (field.type == InputField::Type::Select) {
        object.insert(QStringLiteral("options"), QJsonArray::fromStringList(field.options));
    }
    return object;
}

QJsonObject assistantJson(const FormAssistant &assistant)
{
    QJsonArray fields;
    for (const InputField &field : assistant.inputs) {
        fields.append(fieldJson(field));
    }
    QJsonObject object { { QStringLiteral("title"), assistant.title },
        { QStringLiteral("description"), assistant.description }, { QStringLiteral("color"), assistant.color },
        { QStringLiteral("fields"), fields } };
    if (!assistant.icon.isEmpty()) {
        object.insert(QStringLiteral("icon"), assistant.icon);
    }
    return object;
}

QJsonObject catalogueJson()
{
    QJsonArray categories;
    for (const Category &category : AssistantCatalogue::categories()) {
        QJsonArray agents;
        for (const AIAgent &agent : category.agents) {
            agents.append(
                QJsonObject { { QStringLiteral("title"), agent.title }, { QStringLiteral("icon"), agent.icon },
                    { QStringLiteral("color"), agent.color }, { QStringLiteral("description"), agent.description },
                    { QStringLiteral("opens"), destinationName(AssistantCatalogue::resolve(agent.title)) } });
        }
        categories.append(QJsonObject { { QStringLiteral("name"), category.name },
            { QStringLiteral("icon"), category.icon }, { QStringLiteral("agents"), agents } });
    }
    QJsonArray families;
    for (const AssistantFamily *family : AssistantFamily::all()) {
        QJsonArray assistants;
        for (const FormAssistant &assistant : family->table().entries()) {
            assistants.append(assistantJson(assistant));
        }
        families.append(QJsonObject { { QStringLiteral("id"), family->identifier() },
            { QStringLiteral("name"), family->name() }, { QStringLiteral("heading"), family->headingWord() },
            { QStringLiteral("checksModelAndKey"), family->checksModelAndKey() },
            { QStringLiteral("confirmsPersonalInformation"), family->confirmsPersonalInformation() },
            { QStringLiteral("assistants"), assistants } });
    }
    return { { QStringLiteral("showcaseHeading"), AssistantCatalogue::showcaseHeading() },
        { QStringLiteral("categories"), categories }, { QStringLiteral("families"), families } };
}

QString fieldLine(const InputField &field)
{
    QString line = QStringLiteral("    - %1 (%2)").arg(field.label, field.typeName());
    if (field.type == InputField::Type::Select) {
        line += QStringLiteral(": ") + field.options.join(QStringLiteral(" | "));
    } else if (!field.placeholder.isEmpty()) {
        line += QStringLiteral(": \"%1\"").arg(field.placeholder);
    }
    return line + QLatin1Char('\n');
}

QString catalogueText()
{
    QString text = AssistantCatalogue::showcaseHeading() + QStringLiteral("\n");
    for (const Category &category : AssistantCatalogue::categories()) {
        text += QStringLiteral("\n%1\n").arg(category.name);
        for (const AIAgent &agent : category.agents) {
            text += QStringLiteral("  %1 - %2\n").arg(agent.title, agent.description);
        }
    }
    for (const AssistantFamily *family : AssistantFamily::all()) {
        text += QStringLiteral("\n%1 assistants (%2)\n").arg(family->name()).arg(family->table().size());
        for (const FormAssistant &assistant : family->table().entries()) {
            text += QStringLiteral("  %1 - %2\n").arg(assistant.title, assistant.description);
            for (const InputField &field : assistant.inputs) {
                text += fieldLine(field);
            }
        }
    }
    return text;
}

int runAssistants(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Lists the assistant categories and cards, then every form-driven assistant with its fields."));
    const QCommandLineOption jsonOption(QStringLiteral("json"), QStringLiteral("Machine-readable output."));
    parser.addOption(jsonOption);
    if (const auto done = parseArguments(parser, QStringLiteral("assistants"), arguments)) {
        return *done;
    }
    if (!parser.positionalArguments().isEmpty()) {
        return usageError(QStringLiteral("assistants"), QStringLiteral("assistants takes no arguments"));
    }
    if (parser.isSet(jsonOption)) {
        printOut(QString::fromUtf8(QJsonDocument(catalogueJson()).toJson(QJsonDocument::Indented)));
    } else {
        printOut(catalogueText());
    }
    return exitSuccess;
}

} // namespace

zentrik::cli::Verb zentrik::cli::assistantsVerb()
{
    return { QStringLiteral("assistants"), QStringLiteral("the assistant catalogue and every form with its fields"),
        runAssistants };
}
