#include "app/contentviewmodel.h"

#include "history/historytools.h"
#include "tools/assistantcatalogue.h"

#include <utility>

namespace zentrik {

ContentViewModel::ContentViewModel(QObject *parent)
    : QObject(parent)
{ }

void ContentViewModel::select(const std::optional<NavigationItem> &item)
{
    const bool changed = m_selectedItem != item;
    m_selectedItem = item;
    if (changed) {
        Q_EMIT selectionChanged();
    }
    setSelectedAgent({});
    updateRoute();
}

void ContentViewModel::showHome()
{
    select(NavigationItem::home());
}

void ContentViewModel::showTool(const QString &name)
{
    select(NavigationItem::tool(name));
}

void ContentViewModel::showCategory(const QString &name)
{
    select(NavigationItem::category(name));
}

void ContentViewModel::showSettings()
{
    select(NavigationItem::settings());
}

void ContentViewModel::showHistory()
{
    select(NavigationItem::history());
}

void ContentViewModel::openConversation(const QString &tool, const QString &id, const QString &assistant)
{
    m_pendingTool = tool;
    m_pendingConversation = id;
    if (tool == historytool::askMeAnything) {
        showTool(standaloneTools().at(0));
    } else if (tool == historytool::pdfChat) {
        showTool(standaloneTools().at(1));
    } else if (tool == historytool::imageStudio) {
        showTool(standaloneTools().at(3));
    } else if (tool == historytool::debugger || tool == historytool::sampleData) {
        openAgent(historytool::displayName(tool));
    } else if (tool == historytool::generator && !assistant.isEmpty()) {
        openAgent(assistant);
    } else {
        m_pendingTool.clear();
        m_pendingConversation.clear();
    }
}

QString ContentViewModel::takeConversation(const QString &tool)
{
    if (tool != m_pendingTool) {
        return {};
    }
    m_pendingTool.clear();
    return std::exchange(m_pendingConversation, {});
}

void ContentViewModel::open(const QString &destination)
{
    if (AssistantCatalogue::category(destination) != nullptr) {
        showCategory(destination);
    } else {
        showTool(destination);
    }
}

void ContentViewModel::openAgent(const QString &title)
{
    // A card lives on the dashboard or in a category's grid; from anywhere else the
    // dashboard is where "back" returns to.
    const auto kind = m_selectedItem ? m_selectedItem->kind() : NavigationItem::Kind::Home;
    if (kind != NavigationItem::Kind::Home && kind != NavigationItem::Kind::Category) {
        m_selectedItem = NavigationItem::home();
        Q_EMIT selectionChanged();
    }
    setSelectedAgent(title);
    updateRoute();
}

void ContentViewModel::backToAgents()
{
    setSelectedAgent({});
    updateRoute();
}

void ContentViewModel::setSelectedAgent(const QString &title)
{
    if (m_selectedAgent == title) {
        return;
    }
    m_selectedAgent = title;
    Q_EMIT selectedAgentChanged();
}

void ContentViewModel::updateRoute()
{
    const ScreenRoute route = routeSelection(m_selectedItem, m_selectedAgent);
    if (route == m_route) {
        return;
    }
    m_route = route;
    Q_EMIT routeChanged();
}

} // namespace zentrik
