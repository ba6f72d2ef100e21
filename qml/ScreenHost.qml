import QtQuick
import Zentrik

// Shows the screen the navigation routes to.
Loader {
    id: host

    required property ContentViewModel navigation
    readonly property var screens: ({
        "dashboard": homeView,
        "categoryGrid": categoryView,
        "agentDetail": agentDetailView,
        "toolNotImplemented": toolNotImplementedView,
        "settings": settingsView,
        "voiceNotes": voiceNotesView,
        "askMeAnything": askMeAnythingView,
        "pdfChat": pdfChatView,
        "marketingGenerator": marketingView,
        "salesGenerator": salesView,
        "customerSupportGenerator": supportView,
        "humanResourcesGenerator": hrView,
        "codeDebugger": debuggerView,
        "sampleDataGenerator": sampleDataView,
        "imageStudio": imageStudioView
    })

    objectName: "screenHost"
    sourceComponent: screens[navigation.screen]

    // A screen whose error is fixed in Settings offers to go there.
    Connections {
        target: host.item
        ignoreUnknownSignals: true
        function onOpenSettingsRequested() { host.navigation.showSettings() }
    }

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
        id: imageStudioView
        ImageGeneratorView {}
    }

    Component {
        id: askMeAnythingView
        AskMeAnythingView {}
    }

    Component {
        id: pdfChatView
        PdfChatView {}
    }

    Component {
        id: marketingView
        GeneratorView {
            navigation: host.navigation
            family: "marketing"
        }
    }

    Component {
        id: salesView
        GeneratorView {
            navigation: host.navigation
            family: "sales"
        }
    }

    Component {
        id: supportView
        GeneratorView {
            navigation: host.navigation
            family: "customer-support"
        }
    }

    Component {
        id: hrView
        GeneratorView {
            navigation: host.navigation
            family: "human-resources"
        }
    }

    Component {
        id: debuggerView
        DevToolView {
            tool: "debugger"
        }
    }

    Component {
        id: sampleDataView
        DevToolView {
            tool: "sampleData"
        }
    }

    Component {
        id: voiceNotesView
        VoiceNotesView {}
    }
}
