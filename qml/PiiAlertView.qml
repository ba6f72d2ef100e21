import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// Asks whether to send a message as typed or with its personal information replaced.
// Escape closes it without sending anything; the tool keeps its input. "Send Redacted" is the
// default: it has the focus when the dialog opens, so Return sends the redacted copy.
AppDialog {
    id: dialog

    required property PiiAlertViewModel alert

    signal sendOriginal
    signal sendRedacted

    objectName: "piiAlertView"
    width: Math.min(parent ? parent.width - 80 : 640, 640)
    visible: alert.showAlert
    onOpened: sendRedactedButton.forceActiveFocus(Qt.TabFocusReason)
    onClosed: alert.showAlert = false

    header: ColumnLayout {
        spacing: 8
        SymbolIcon {
            Layout.alignment: Qt.AlignHCenter
            Layout.topMargin: 20
            symbol: "exclamationmark.shield.fill"
            size: 44
            color: Theme.warningColor
        }
        Label {
            Layout.alignment: Qt.AlignHCenter
            text: qsTr("Personal Information Detected")
            font.pixelSize: 20
            font.bold: true
        }
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: 12

        Label {
            Layout.fillWidth: true
            text: qsTr("We've detected and redacted some potentially sensitive information in your message.")
            wrapMode: Text.Wrap
            horizontalAlignment: Text.AlignHCenter
            color: Theme.secondaryTextColor
        }

        MessageBlock {
            objectName: "originalMessageBlock"
            Layout.fillWidth: true
            title: qsTr("Original Message")
            text: dialog.alert.originalMessage
        }

        MessageBlock {
            objectName: "redactedMessageBlock"
            Layout.fillWidth: true
            title: qsTr("Redacted Message")
            text: dialog.alert.redactedMessage
        }
    }

    footer: DialogFooter {
        PlainButton {
            objectName: "sendOriginalButton"
            text: qsTr("Send Original")
            onClicked: {
                dialog.alert.showAlert = false
                dialog.sendOriginal()
            }
        }
        AccentButton {
            id: sendRedactedButton
            objectName: "sendRedactedButton"
            text: qsTr("Send Redacted")
            onClicked: {
                dialog.alert.showAlert = false
                dialog.sendRedacted()
            }
        }
    }
}
