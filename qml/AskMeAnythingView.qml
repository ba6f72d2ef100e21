pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// The general chat, whose suggestions double as the Writing Assistant.
ChatPage {
    id: page

    property ContentViewModel navigation

    signal openSettingsRequested

    objectName: "askMeAnythingView"

    AskMeAnythingViewModel {
        id: chat
        objectName: "askMeAnythingViewModel"
        apiManager: APIManager
        history: HistoryService
    }

    // A conversation opened from the History screen.
    Component.onCompleted: {
        const conversation = page.navigation ? page.navigation.takeConversation("askMeAnything") : ""
        if (conversation.length > 0)
            chat.openConversation(conversation)
    }

    ScreenHeading {
        Layout.fillWidth: true
        title: qsTr("Ask Me Anything")
        symbol: "lightbulb.fill"
        subtitle: qsTr("Supercharge your workflow today. You can choose from the suggestions below.")
    }

    RecentConversations {
        Layout.fillWidth: true
        chat: chat
    }

    SuggestionChips {
        Layout.fillWidth: true
        suggestions: chat.suggestions
        selected: chat.selectedSuggestion
        onToggled: label => chat.toggleSuggestion(label)
    }

    messages: chat.messages
    messageDelegate: ChatMessageDelegate {
        width: page.contentWidth
    }

    tail: BusyIndicator {
        running: chat.isAIProcessing
        visible: running
    }

    footer: [
        LastTurnActions {
            Layout.fillWidth: true
            chat: chat
        },
        ErrorNotice {
            Layout.fillWidth: true
            labelName: "chatError"
            text: chat.errorMessage
            opensSettings: chat.errorOpensSettings
            onOpenSettingsRequested: page.openSettingsRequested()
        },
        ChatInput {
            Layout.fillWidth: true
            placeholderText: qsTr("Type your message here...")
            buttonText: qsTr("Ask")
            busy: chat.isAIProcessing
            text: chat.newMessage
            onTextChanged: chat.newMessage = text
            onSubmitted: chat.send()
        }
    ]

    PiiAlertView {
        alert: chat.piiAlertVM
        onSendOriginal: chat.sendOriginal()
        onSendRedacted: chat.sendRedacted()
    }
}
