#include "app/catalogueviewmodel.h"

#include "app/screenroute.h"
#include "tools/assistantcatalogue.h"

#include <QCoreApplication>

namespace zentrik {

namespace {

QVariantMap agentMap(const AIAgent &agent)
{
    return {
        { QStringLiteral("title"), agent.title },
        { QStringLiteral("description"), agent.description },
        { QStringLiteral("icon"), agent.icon },
        { QStringLiteral("color"), agent.color },
    };
}

QVariantMap categoryMap(const Category &category)
{
    QVariantList agents;
    agents.reserve(category.agents.size());
    for (const AIAgent &agent : category.agents) {
        agents.append(agentMap(agent));
    }
    return {
        { QStringLiteral("name"), category.name },
        { QStringLiteral("icon"), category.icon },
        { QStringLiteral("agents"), agents },
    };
}

} // namespace

CatalogueViewModel::CatalogueViewModel(QObject *parent)
    : QObject(parent)
{ }

QVariantList CatalogueViewModel::categories() const
{
    static const QVariantList list = [] {
        QVariantList result;
        for (const Category &category : AssistantCatalogue::categories()) {
            result.append(categoryMap(category));
        }
        return result;
    }();
    return list;
}

QVariantList CatalogueViewModel::promptOptions() const
{
    QVariantList list;
    for (const PromptOption &option : AssistantCatalogue::promptOptions()) {
        list.append(QVariantMap {
            { QStringLiteral("icon"), option.icon },
            { QStringLiteral("text"),
                QCoreApplication::translate("zentrik::AssistantCatalogue", option.text.toUtf8().constData()) },
            { QStringLiteral("destination"), option.destination },
        });
    }
    return list;
}

QString CatalogueViewModel::showcaseHeading() const
{
    return AssistantCatalogue::showcaseHeading();
}

QStringList CatalogueViewModel::tools() const
{
    return standaloneTools();
}

QVariantMap CatalogueViewModel::category(const QString &name) const
{
    const Category *found = AssistantCatalogue::category(name);
    return found ? categoryMap(*found) : QVariantMap();
}

QVariantMap CatalogueViewModel::agent(const QString &title) const
{
    const AIAgent *found = AssistantCatalogue::agent(title);
    return found ? agentMap(*found) : QVariantMap();
}

} // namespace zentrik
