import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// Settings for the conversation history: whether it is kept, whether a question carries the
// earlier messages of its conversation, and deleting all of it after a confirmation that
// says how many conversations go. These take effect at once; Save is for keys and models.
SettingsSection {
    id: section

    property string status

    objectName: "historySettings"
    title: qsTr("Conversation History")

    Connections {
        target: HistoryService
        function onOperationFinished(succeeded, message) {
            section.status = message
        }
    }

    NoticeBanner {
        objectName: "historySettingsNotice"
        Layout.fillWidth: true
        visible: HistoryService.notice.length > 0
        text: HistoryService.notice
    }

    SettingSwitch {
        Layout.fillWidth: true
        switchName: "keepHistorySwitch"
        text: qsTr("Keep conversation history")
        explanation: qsTr("Conversations and runs are kept on this computer to search and go on with. Off: nothing new is written.")
        checked: HistoryService.keepHistory
        onToggled: on => HistoryService.keepHistory = on
    }

    SettingSwitch {
        Layout.fillWidth: true
        switchName: "sendEarlierSwitch"
        text: qsTr("Send earlier messages with each question")
        explanation: qsTr("A follow-up question carries the conversation before it, so the model knows what \"it\" and \"shorter\" refer to. Off: each question goes alone.")
        checked: HistoryService.sendEarlierMessages
        onToggled: on => HistoryService.sendEarlierMessages = on
    }

    RowLayout {
        Layout.fillWidth: true
        spacing: 12
        PlainButton {
            objectName: "deleteAllHistoryButton"
            symbol: "trash"
            text: qsTr("Delete All History…")
            enabled: !HistoryService.isBusy
            onClicked: {
                HistoryService.refreshCount()
                confirmation.open()
            }
        }
        Label {
            objectName: "historySettingsStatus"
            Layout.fillWidth: true
            visible: section.status.length > 0
            text: section.status
            color: Theme.secondaryTextColor
            wrapMode: Text.Wrap
        }
    }

    AppDialog {
        id: confirmation
        objectName: "deleteAllHistoryDialog"
        width: Math.min(parent ? parent.width - 80 : 480, 480)
        title: qsTr("Delete All History?")
        onOpened: cancelButton.forceActiveFocus(Qt.TabFocusReason)

        Label {
            objectName: "deleteAllHistoryText"
            width: parent.width
            wrapMode: Text.Wrap
            text: HistoryService.conversationCount < 0 ? qsTr("Counting the stored conversations…")
                : HistoryService.conversationCount === 0 ? qsTr("There are no stored conversations.")
                : HistoryService.conversationCount === 1 ? qsTr("The one stored conversation will be deleted. This cannot be undone.")
                : qsTr("All %1 stored conversations will be deleted, with the pictures kept for them. This cannot be undone.").arg(HistoryService.conversationCount)
        }

        footer: DialogFooter {
            PlainButton {
                id: cancelButton
                objectName: "cancelDeleteAllButton"
                text: qsTr("Cancel")
                onClicked: confirmation.reject()
            }
            AccentButton {
                objectName: "confirmDeleteAllButton"
                text: qsTr("Delete All")
                destructive: true
                enabled: HistoryService.conversationCount > 0
                onClicked: {
                    HistoryService.deleteAll()
                    confirmation.accept()
                }
            }
        }
    }
}
