import QtQuick
import QtQuick.Layouts
import Zentrik

// The cards of one category.
ScrollingPage {
    id: categoryPage

    required property ContentViewModel navigation
    readonly property var category: Catalogue.category(navigation.screenArgument)

    objectName: "categoryView"

    ScreenHeading {
        Layout.fillWidth: true
        title: categoryPage.category.name ?? ""
        symbol: categoryPage.category.icon ?? ""
    }

    AgentGrid {
        Layout.fillWidth: true
        Layout.topMargin: 8
        agents: categoryPage.category.agents ?? []
        onPicked: title => categoryPage.navigation.openAgent(title)
    }
}
