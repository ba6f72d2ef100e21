#include "app/sidebarmodel.h"

#include "app/contentviewmodel.h"
#include "app/screenroute.h"
#include "tools/assistantcatalogue.h"

#include <QHash>

namespace zentrik {

namespace {

QString toolSymbol(const QString &tool)
{
    static const QHash<QString, QString> symbols = {
        { standaloneTools().at(0), QStringLiteral("lightbulb.fill") },
        { standaloneTools().at(1), QStringLiteral("doc.text.magnifyingglass") },
        { standaloneTools().at(2), QStringLiteral("mic.fill") },
        { standaloneTools().at(3), QStringLiteral("photo") },
    };
    return symbols.value(tool, QStringLiteral("hammer"));
}

} // namespace

SidebarModel::SidebarModel(QObject *parent)
    : QAbstractListModel(parent)
{
    m_entries.append({ NavigationItem::home(), tr("Home"), QStringLiteral("house"), {} });
    for (const QString &tool : standaloneTools()) {
        m_entries.append({ NavigationItem::tool(tool), tool, toolSymbol(tool), tr("Tools") });
    }
    m_entries.append(
        { NavigationItem::history(), tr("History"), QStringLiteral("clock.arrow.circlepath"), tr("Tools") });
    for (const Category &category : AssistantCatalogue::categories()) {
        m_entries.append({ NavigationItem::category(category.name), category.name, category.icon, tr("Categories") });
    }
    m_entries.append({ NavigationItem::settings(), tr("Settings"), QStringLiteral("gear"), {} });
}

int SidebarModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_entries.size());
}

QVariant SidebarModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid)) {
        return {};
    }
    const Entry &entry = m_entries.at(index.row());
    switch (role) {
    case Qt::DisplayRole:
    case LabelRole:
        return entry.label;
    case SymbolRole:
        return entry.symbol;
    case SectionRole:
        return entry.section;
    case SelectedRole:
        return isSelected(entry);
    default:
        return {};
    }
}

QHash<int, QByteArray> SidebarModel::roleNames() const
{
    return {
        { LabelRole, "label" },
        { SymbolRole, "symbol" },
        { SectionRole, "section" },
        { SelectedRole, "selected" },
    };
}

void SidebarModel::setNavigation(ContentViewModel *navigation)
{
    if (m_navigation == navigation) {
        return;
    }
    disconnect(m_selectionConnection);
    m_navigation = navigation;
    if (navigation) {
        m_selectionConnection
            = connect(navigation, &ContentViewModel::selectionChanged, this, &SidebarModel::refreshSelection);
    }
    refreshSelection();
    Q_EMIT navigationChanged();
}

NavigationItem SidebarModel::item(int row) const
{
    return row >= 0 && row < m_entries.size() ? m_entries.at(row).item : NavigationItem();
}

void SidebarModel::activate(int row)
{
    if (row < 0 || row >= m_entries.size() || !m_navigation) {
        return;
    }
    m_navigation->select(m_entries.at(row).item);
}

bool SidebarModel::isSelected(const Entry &entry) const
{
    if (!m_navigation) {
        return false;
    }
    // Nothing selected shows the dashboard, so Home is marked then too.
    const NavigationItem current = m_navigation->selectedItem().value_or(NavigationItem::home());
    return current == entry.item;
}

void SidebarModel::refreshSelection()
{
    if (!m_entries.isEmpty()) {
        Q_EMIT dataChanged(index(0), index(int(m_entries.size()) - 1), { SelectedRole });
    }
}

} // namespace zentrik
