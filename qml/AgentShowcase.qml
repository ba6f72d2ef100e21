pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// Every category's cards under the showcase heading.
ColumnLayout {
    id: showcase

    required property ContentViewModel navigation

    spacing: 14

    Label {
        objectName: "showcaseHeading"
        text: Catalogue.showcaseHeading
        font.pixelSize: 22
        font.bold: true
        Accessible.role: Accessible.Heading
    }

    Repeater {
        model: Catalogue.categories
        delegate: ColumnLayout {
            id: category
            required property var modelData
            Layout.fillWidth: true
            Layout.topMargin: 6
            spacing: 10

            RowLayout {
                spacing: 8
                SymbolIcon {
                    symbol: category.modelData.icon
                    color: Theme.secondaryTextColor
                }
                Label {
                    text: category.modelData.name
                    font.pixelSize: 17
                    font.weight: Font.DemiBold
                    color: Theme.secondaryTextColor
                }
            }

            AgentGrid {
                Layout.fillWidth: true
                agents: category.modelData.agents
                onPicked: title => showcase.navigation.openAgent(title)
            }
        }
    }
}
