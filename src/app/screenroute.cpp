#include "app/screenroute.h"

#include "tools/assistantcatalogue.h"
#include "tools/assistantfamily.h"

#include <QCoreApplication>
#include <QHash>

namespace zentrik {

QString screenId(Screen screen)
{
    switch (screen) {
    case Screen::Dashboard:
        return QStringLiteral("dashboard");
    case Screen::AskMeAnything:
        return QStringLiteral("askMeAnything");
    case Screen::PdfChat:
        return QStringLiteral("pdfChat");
    case Screen::VoiceNotes:
        return QStringLiteral("voiceNotes");
    case Screen::ImageStudio:
        return QStringLiteral("imageStudio");
    case Screen::ToolNotImplemented:
        return QStringLiteral("toolNotImplemented");
    case Screen::CategoryGrid:
        return QStringLiteral("categoryGrid");
    case Screen::AgentDetail:
        return QStringLiteral("agentDetail");
    case Screen::MarketingGenerator:
        return QStringLiteral("marketingGenerator");
    case Screen::SalesGenerator:
        return QStringLiteral("salesGenerator");
    case Screen::CustomerSupportGenerator:
        return QStringLiteral("customerSupportGenerator");
    case Screen::HumanResourcesGenerator:
        return QStringLiteral("humanResourcesGenerator");
    case Screen::CodeDebugger:
        return QStringLiteral("codeDebugger");
    case Screen::SampleDataGenerator:
        return QStringLiteral("sampleDataGenerator");
    case Screen::History:
        return QStringLiteral("history");
    case Screen::Settings:
        return QStringLiteral("settings");
    }
    return {};
}

const QStringList &standaloneTools()
{
    static const QStringList tools = {
        QStringLiteral("Ask Me Anything"),
        QStringLiteral("Chat With Your PDFs"),
        QStringLiteral("Voice Notes"),
        QStringLiteral("Image Creation Studio"),
    };
    return tools;
}

namespace {

Screen generatorScreen(AssistantFamily::Id family)
{
    switch (family) {
    case AssistantFamily::Id::Marketing:
        return Screen::MarketingGenerator;
    case AssistantFamily::Id::Sales:
        return Screen::SalesGenerator;
    case AssistantFamily::Id::CustomerSupport:
        return Screen::CustomerSupportGenerator;
    case AssistantFamily::Id::HumanResources:
        return Screen::HumanResourcesGenerator;
    }
    return Screen::AgentDetail;
}

ScreenRoute routeAgent(const QString &title)
{
    const AgentDestination destination = AssistantCatalogue::resolve(title);
    switch (destination.kind) {
    case AgentDestination::Kind::FormGenerator:
        return { generatorScreen(destination.family->id()), title };
    case AgentDestination::Kind::ImageStudio:
        return { Screen::ImageStudio, title };
    case AgentDestination::Kind::CodeDebugger:
        return { Screen::CodeDebugger, title };
    case AgentDestination::Kind::SampleDataGenerator:
        return { Screen::SampleDataGenerator, title };
    case AgentDestination::Kind::AgentDetail:
        break;
    }
    return { Screen::AgentDetail, title };
}

ScreenRoute routeTool(const QString &name)
{
    static const QHash<QString, Screen> screens = {
        { standaloneTools().at(0), Screen::AskMeAnything },
        { standaloneTools().at(1), Screen::PdfChat },
        { standaloneTools().at(2), Screen::VoiceNotes },
        { standaloneTools().at(3), Screen::ImageStudio },
    };
    return { screens.value(name, Screen::ToolNotImplemented), name };
}

} // namespace

ScreenRoute routeSelection(const std::optional<NavigationItem> &item, const QString &agentTitle)
{
    const auto kind = item ? item->kind() : NavigationItem::Kind::Home;
    switch (kind) {
    case NavigationItem::Kind::Tool:
        return routeTool(item->name());
    case NavigationItem::Kind::History:
        return { Screen::History, {} };
    case NavigationItem::Kind::Settings:
        return { Screen::Settings, {} };
    case NavigationItem::Kind::Home:
    case NavigationItem::Kind::Category:
        break;
    }
    if (!agentTitle.isEmpty()) {
        return routeAgent(agentTitle);
    }
    if (kind == NavigationItem::Kind::Category) {
        // A category the catalogue does not hold has no cards to show; say so plainly
        // instead of drawing an empty grid.
        if (AssistantCatalogue::category(item->name()) == nullptr) {
            return { Screen::ToolNotImplemented, item->name() };
        }
        return { Screen::CategoryGrid, item->name() };
    }
    return { Screen::Dashboard, {} };
}

QString screenTitle(const ScreenRoute &route)
{
    switch (route.screen) {
    case Screen::Dashboard:
        return QCoreApplication::translate("zentrik::ContentViewModel", "Zentrik Dashboard");
    case Screen::Settings:
        return QCoreApplication::translate("zentrik::ContentViewModel", "Settings");
    case Screen::History:
        return QCoreApplication::translate("zentrik::ContentViewModel", "History");
    case Screen::MarketingGenerator:
        return AssistantFamily::marketing().name();
    case Screen::SalesGenerator:
        return AssistantFamily::sales().name();
    case Screen::CustomerSupportGenerator:
        return AssistantFamily::customerSupport().name();
    case Screen::HumanResourcesGenerator:
        return AssistantFamily::humanResources().name();
    case Screen::AskMeAnything:
    case Screen::PdfChat:
    case Screen::VoiceNotes:
        break;
    case Screen::ImageStudio:
        return standaloneTools().at(3);
    case Screen::CodeDebugger:
    case Screen::SampleDataGenerator:
    case Screen::ToolNotImplemented:
    case Screen::CategoryGrid:
    case Screen::AgentDetail:
        return route.argument;
    }
    return route.argument;
}

QDebug operator<<(QDebug debug, const ScreenRoute &route)
{
    const QDebugStateSaver saver(debug);
    debug.nospace() << "ScreenRoute(" << screenId(route.screen) << ", " << route.argument << ')';
    return debug;
}

} // namespace zentrik
