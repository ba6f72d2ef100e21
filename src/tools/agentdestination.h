#pragma once

#include <QString>

namespace zentrik {

class AssistantFamily;

// Where picking a card leads.
struct AgentDestination
{
    enum class Kind {
        FormGenerator, // the family's generator screen with the title preselected
        ImageStudio,
        CodeDebugger,
        SampleDataGenerator,
        AgentDetail, // no tool serves the card: the detail screen with its icon and texts
    };

    Kind kind = Kind::AgentDetail;
    const AssistantFamily *family = nullptr; // set for FormGenerator only
    QString title; // the card's title; a generator's initial selection
};

} // namespace zentrik
