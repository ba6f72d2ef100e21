#pragma once

#include "app/navigationitem.h"

#include <QString>

#include <optional>

namespace zentrik {

// The screens the content area can show.
enum class Screen {
    Dashboard,
    AskMeAnything,
    PdfChat,
    VoiceNotes,
    ImageStudio,
    ToolNotImplemented,
    CategoryGrid,
    AgentDetail,
    MarketingGenerator,
    SalesGenerator,
    CustomerSupportGenerator,
    HumanResourcesGenerator,
    CodeDebugger,
    SampleDataGenerator,
    History,
    Settings,
};

// A screen and what it is opened with: the preselected assistant title of a generator or
// an agent's screen, the category of a card grid, the name of a tool that has no screen.
struct ScreenRoute
{
    Screen screen = Screen::Dashboard;
    QString argument;

    friend bool operator==(const ScreenRoute &, const ScreenRoute &) = default;
};

// The stable identifier the views look a screen up by ("dashboard", "marketingGenerator").
[[nodiscard]] QString screenId(Screen screen);

// What the screen is called in its heading and the window title: the tool's, the
// category's or the assistant family's name, the card's title on its detail screen.
[[nodiscard]] QString screenTitle(const ScreenRoute &route);

// The standalone tools of the sidebar, in order.
[[nodiscard]] const QStringList &standaloneTools();

// Where a selection leads. A picked card (agentTitle) wins over the dashboard or the card
// grid it was picked from; tools and settings ignore it. Nothing selected is the dashboard.
[[nodiscard]] ScreenRoute routeSelection(const std::optional<NavigationItem> &item, const QString &agentTitle = {});

QDebug operator<<(QDebug debug, const ScreenRoute &route);

} // namespace zentrik
