import QtQuick
import Zentrik

// Shows the screen the navigation routes to. A screen reaches the navigation through its
// parent, this loader: Qt 6.4's Loader cannot make components bound to their file, so they
// cannot name the loader's id.
Loader {
    id: host

    required property ContentViewModel navigation
    readonly property var screens: ({
        "dashboard": homeView,
        "categoryGrid": categoryView,
        "agentDetail": agentDetailView,
        "toolNotImplemented": toolNotImplementedView,
        "settings": settingsView,
        "history": historyView,
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
            navigation: (parent as ScreenHost).navigation
        }
    }

    Component {
        id: categoryView
        CategoryView {
            navigation: (parent as ScreenHost).navigation
        }
    }

    Component {
        id: agentDetailView
        AgentDetailView {
            navigation: (parent as ScreenHost).navigation
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
        id: historyView
        HistoryView {
            navigation: (parent as ScreenHost).navigation
        }
    }

    Component {
        id: imageStudioView
        ImageGeneratorView {
            navigation: (parent as ScreenHost).navigation
        }
    }

    Component {
        id: askMeAnythingView
        AskMeAnythingView {
            navigation: (parent as ScreenHost).navigation
        }
    }

    Component {
        id: pdfChatView
        PdfChatView {
            navigation: (parent as ScreenHost).navigation
        }
    }

    Component {
        id: marketingView
        GeneratorView {
            navigation: (parent as ScreenHost).navigation
            family: "marketing"
        }
    }

    Component {
        id: salesView
        GeneratorView {
            navigation: (parent as ScreenHost).navigation
            family: "sales"
        }
    }

    Component {
        id: supportView
        GeneratorView {
            navigation: (parent as ScreenHost).navigation
            family: "customer-support"
        }
    }

    Component {
        id: hrView
        GeneratorView {
            navigation: (parent as ScreenHost).navigation
            family: "human-resources"
        }
    }

    Component {
        id: debuggerView
        DevToolView {
            navigation: (parent as ScreenHost).navigation
            tool: "debugger"
        }
    }

    Component {
        id: sampleDataView
        DevToolView {
            navigation: (parent as ScreenHost).navigation
            tool: "sampleData"
        }
    }

    Component {
        id: voiceNotesView
        VoiceNotesView {}
    }
}
