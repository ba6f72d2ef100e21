import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// A card whose assistant has no screen of its own.
ScrollingPage {
    id: detail

    required property ContentViewModel navigation
    readonly property var agent: Catalogue.agent(navigation.screenArgument)

    objectName: "agentDetailView"

    ScreenHeading {
        Layout.fillWidth: true
        title: detail.agent.title ?? detail.navigation.screenArgument
        subtitle: detail.agent.description ?? ""
        symbol: detail.agent.icon ?? ""
        tint: Theme.color(detail.agent.color ?? "")
    }

    Label {
        Layout.topMargin: 24
        text: qsTr("Agent-specific interface goes here")
        color: Theme.secondaryTextColor
        font.pixelSize: 16
    }

    PlainButton {
        objectName: "backToAgents"
        Layout.topMargin: 16
        text: qsTr("Back to all agents")
        Accessible.name: text
        onClicked: detail.navigation.backToAgents()
    }
}
