#pragma once

#include "agentdestination.h"
#include "category.h"
#include "promptoption.h"

#include <QList>
#include <QString>

namespace zentrik {

// The fixed catalogue of assistant cards and the dashboard's shortcuts, built once on
// first use.
class AssistantCatalogue
{
public:
    // The five categories in display order.
    [[nodiscard]] static const QList<Category> &categories();
    // The category of that name, or nullptr.
    [[nodiscard]] static const Category *category(const QString &name);
    // The card of that title, or nullptr.
    [[nodiscard]] static const AIAgent *agent(const QString &title);
    // Every card, category after category.
    [[nodiscard]] static QList<AIAgent> allAgents();

    // The heading above the dashboard's card showcase. It says 24 although the catalogue
    // holds 25 cards; the wording is fixed.
    [[nodiscard]] static QString showcaseHeading();
    // The four dashboard shortcuts in display order.
    [[nodiscard]] static const QList<PromptOption> &promptOptions();

    // The tool that serves a card title. Titles of the four form families open their
    // generator; a title no tool serves leads to the agent's detail screen.
    [[nodiscard]] static AgentDestination resolve(const QString &title);
};

} // namespace zentrik
