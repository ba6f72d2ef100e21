import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// Stands in for a tool screen that is not part of this build yet, naming the tool and the
// assistant that would be preselected.
ScrollingPage {
    id: pending

    required property ContentViewModel navigation

    objectName: "pendingToolView"

    ScreenHeading {
        Layout.fillWidth: true
        title: pending.navigation.screenTitle
        symbol: "hammer"
        subtitle: qsTr("This tool's screen is not available in this build yet.")
    }

    Label {
        objectName: "pendingAssistant"
        Layout.fillWidth: true
        Layout.topMargin: 12
        visible: pending.navigation.selectedAgent.length > 0
        text: qsTr("Selected assistant: %1").arg(pending.navigation.selectedAgent)
        font.pixelSize: 16
        wrapMode: Text.Wrap
    }
}
