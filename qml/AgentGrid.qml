pragma ComponentBehavior: Bound

import QtQuick
import Zentrik

// Assistant cards in as many equal columns as fit.
Flow {
    id: grid

    property var agents: []
    property int minimumCardWidth: 250
    readonly property int columns: Math.max(1, Math.floor((width + spacing) / (minimumCardWidth + spacing)))
    readonly property real cardWidth: (width - (columns - 1) * spacing) / columns

    signal picked(string title)

    spacing: 12

    Repeater {
        model: grid.agents
        delegate: AgentCard {
            required property var modelData
            width: grid.cardWidth
            title: modelData.title
            description: modelData.description
            symbol: modelData.icon
            tint: Theme.color(modelData.color)
            onClicked: grid.picked(title)
        }
    }
}
