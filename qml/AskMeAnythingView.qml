import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// The general chat, whose suggestions double as the Writing Assistant.
ScrollingPage {
    id: page

    objectName: "askMeAnythingView"

    AskMeAnythingViewModel {
        id: chat
        objectName: "askMeAnythingViewModel"
        apiManager: APIManager
    }

    ScreenHeading {
        Layout.fillWidth: true
        title: qsTr("Ask Me Anything")
        symbol: "lightbulb.fill"
        subtitle: qsTr("Supercharge your workflow today. You can choose from the suggestions below.")
    }

    SuggestionChips {
        Layout.fillWidth: true
        suggestions: chat.suggestions
        selected: chat.selectedSuggestion
        onToggled: label => chat.toggleSuggestion(label)
    }

    Repeater {
        model: chat.messages
        ChatMessageDelegate {
            Layout.fillWidth: true
        }
    }

    BusyIndicator {
        running: chat.isAIProcessing
        visible: running
    }

    Label {
        objectName: "chatError"
        Layout.fillWidth: true
        visible: chat.errorMessage.length > 0
        text: chat.errorMessage
        color: Theme.warningColor
        wrapMode: Text.Wrap
    }

    ChatInput {
        Layout.fillWidth: true
        placeholderText: qsTr("Type your message here...")
        buttonText: qsTr("Ask")
        busy: chat.isAIProcessing
        text: chat.newMessage
        onTextChanged: chat.newMessage = text
        onSubmitted: chat.send()
    }

    PiiAlertView {
        alert: chat.piiAlertVM
        onSendOriginal: chat.sendOriginal()
        onSendRedacted: chat.sendRedacted()
    }
}
