import QtQuick
import Zentrik

// Shows the screen the navigation routes to. Screens that are not built yet show a
// placeholder that names what was chosen.
Loader {
    id: host

    required property ContentViewModel navigation
    readonly property var screens: ({
        "dashboard": homeView,
        "categoryGrid": categoryView,
        "agentDetail": agentDetailView,
        "toolNotImplemented": toolNotImplementedView,
        "settings": settingsView
    })

    objectName: "screenHost"
    sourceComponent: screens[navigation.screen] ?? pendingView

    Component {
        id: homeView
        HomeView {
            navigation: host.navigation
        }
    }

    Component {
        id: categoryView
        CategoryView {
            navigation: host.navigation
        }
    }

    Component {
        id: agentDetailView
        AgentDetailView {
            navigation: host.navigation
        }
    }

    Component {
        id: toolNotImplementedView
        ToolNotImplementedView {}
    }

    Component {
        id: settingsView
        SettingsView {}
    }

    Component {
        id: pendingView
        PendingToolView {
            navigation: host.navigation
        }
    }
}
