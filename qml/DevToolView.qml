pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// The Code Debugger (tool "debugger") and the Sample Data Generator (tool "sampleData").
// A streamed reply shows as a live message; Escape stops it.
ChatPage {
    id: page

    property string tool: "debugger"
    readonly property bool isDebugger: tool === "debugger"

    property ContentViewModel navigation

    signal openSettingsRequested

    objectName: isDebugger ? "codeDebuggerView" : "sampleDataView"

    DevToolViewModel {
        id: devTool
        objectName: "devToolViewModel"
        apiManager: APIManager
        history: HistoryService
        tool: page.tool
    }

    // A conversation opened from the History screen.
    Component.onCompleted: {
        const conversation = page.navigation ? page.navigation.takeConversation(page.tool) : ""
        if (conversation.length > 0)
            devTool.openConversation(conversation)
    }

    Shortcut {
        sequence: "Escape"
        enabled: devTool.isStreaming
        onActivated: devTool.stop()
    }

    ScreenHeading {
        Layout.fillWidth: true
        title: page.isDebugger ? qsTr("Code Debugger") : qsTr("Sample Data Generator")
        symbol: page.isDebugger ? "ladybug" : "square.stack.3d.up"
        subtitle: page.isDebugger ? qsTr("Paste your code and describe the problem.")
                                  : qsTr("Describe the data you need and pick a format.")
    }

    RecentConversations {
        Layout.fillWidth: true
        chat: devTool
    }

    SuggestionChips {
        Layout.fillWidth: true
        suggestions: devTool.suggestions
        selected: devTool.selectedSuggestion
        onToggled: label => devTool.toggleSuggestion(label)
    }

    messages: devTool.messages
    messageDelegate: ChatMessageDelegate {
        width: page.contentWidth
    }

    tail: ChatMessageDelegate {
        objectName: "streamingMessage"
        Layout.fillWidth: true
        visible: devTool.isStreaming && devTool.streamedContent.length > 0
        role: "assistant"
        content: devTool.streamedContent
        symbol: "brain.head.profile"
        blocks: null
        isRule: false
        isStopped: false
    }

    footer: [
        LastTurnActions {
            Layout.fillWidth: true
            chat: devTool
        },
        ErrorNotice {
            Layout.fillWidth: true
            labelName: "devToolError"
            text: devTool.errorMessage
            opensSettings: devTool.errorOpensSettings
            onOpenSettingsRequested: page.openSettingsRequested()
        },
        RowLayout {
            Layout.fillWidth: true
            ChatInput {
                Layout.fillWidth: true
                placeholderText: page.isDebugger ? qsTr("Paste your code here...") : qsTr("Describe your data here...")
                buttonText: devTool.buttonText
                buttonSymbol: page.isDebugger ? "paperplane.fill" : "gear"
                busy: devTool.isProcessing
                // Code keeps its columns only in a fixed-width font.
                monospace: page.isDebugger
                text: devTool.input
                onTextChanged: devTool.input = text
                onSubmitted: devTool.send()
            }
            PlainButton {
                objectName: "stopButton"
                visible: devTool.isStreaming
                symbol: "stop.fill"
                text: qsTr("Stop")
                onClicked: devTool.stop()
            }
        }
    ]
}
