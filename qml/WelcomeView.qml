pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// The dashboard's greeting and its four shortcuts.
ColumnLayout {
    id: welcome

    required property ContentViewModel navigation

    spacing: 8

    Label {
        objectName: "dashboardTitle"
        text: qsTr("Zentrik Dashboard")
        font.pixelSize: 30
        font.bold: true
        Accessible.role: Accessible.Heading
    }

    Label {
        Layout.topMargin: 8
        text: qsTr("What do you want to do today?")
        font.pixelSize: 20
        font.weight: Font.DemiBold
    }

    Label {
        text: qsTr("Supercharge your workflow today.")
        color: Theme.secondaryTextColor
        font.pixelSize: 15
    }

    GridLayout {
        id: options
        Layout.fillWidth: true
        Layout.topMargin: 12
        columns: width > 860 ? 4 : 2
        rowSpacing: 12
        columnSpacing: 12

        Repeater {
            model: Catalogue.promptOptions
            delegate: PromptOptionCard {
                required property var modelData
                Layout.fillWidth: true
                Layout.preferredWidth: 1
                Layout.fillHeight: true
                symbol: modelData.icon
                text: modelData.text
                onClicked: welcome.navigation.open(modelData.destination)
            }
        }
    }
}
