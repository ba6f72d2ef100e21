import QtQuick
import QtQuick.Layouts
import Zentrik

// The dashboard: the welcome with its shortcuts, then every assistant by category.
ScrollingPage {
    id: home

    required property ContentViewModel navigation

    objectName: "homeView"

    WelcomeView {
        Layout.fillWidth: true
        navigation: home.navigation
    }

    LocalServerOffers {
        Layout.fillWidth: true
        Layout.topMargin: 16
        navigation: home.navigation
    }

    AgentShowcase {
        Layout.fillWidth: true
        Layout.topMargin: 16
        navigation: home.navigation
    }
}
