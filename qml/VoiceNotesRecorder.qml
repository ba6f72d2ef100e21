import QtQuick
import QtQuick.Controls
import QtQuick.Controls.Material
import QtQuick.Layouts
import Zentrik

// The record button with what it is doing: waiting, opening the microphone, recording
// (with the time so far) or transcribing; below it the last failure, with Retry when the
// recording can be sent again.
Rectangle {
    id: panel

    required property VoiceNotesViewModel voiceNotes

    implicitHeight: column.implicitHeight + 40
    radius: 12
    color: Theme.cardColor
    border.color: Theme.cardBorderColor

    ColumnLayout {
        id: column
        anchors.fill: parent
        anchors.margins: 20
        spacing: 12

        RoundButton {
            id: recordButton
            objectName: "recordButton"
            Layout.alignment: Qt.AlignHCenter
            Layout.preferredWidth: 88
            Layout.preferredHeight: 88
            enabled: panel.voiceNotes.canRecord
            highlighted: true
            Material.accent: panel.voiceNotes.isRecording ? Theme.color("red") : Theme.accentColor
            Accessible.name: panel.voiceNotes.isRecording || panel.voiceNotes.isStarting ? qsTr("Stop recording")
                                                                                        : qsTr("Start recording")
            onClicked: panel.voiceNotes.toggleRecording()
            // Drawn without Material's shader shadow, which the software renderer cannot run.
            background: Rectangle {
                radius: width / 2
                color: !recordButton.enabled ? recordButton.Material.buttonDisabledColor
                     : recordButton.down ? Qt.darker(recordButton.Material.accentColor, 1.15)
                     : recordButton.Material.accentColor
                border.width: recordButton.visualFocus ? 2 : 0
                border.color: recordButton.Material.foreground
            }
            contentItem: SymbolIcon {
                symbol: panel.voiceNotes.isRecording || panel.voiceNotes.isStarting ? "stop.fill" : "mic.fill"
                size: 40
                color: "white"
            }
        }

        Label {
            objectName: "recordingTime"
            Layout.alignment: Qt.AlignHCenter
            visible: panel.voiceNotes.isRecording
            text: panel.voiceNotes.recordingTimeText
            font.pixelSize: 28
            font.family: Theme.monospaceFontFamily
        }

        RowLayout {
            Layout.alignment: Qt.AlignHCenter
            spacing: 8
            BusyIndicator {
                Layout.preferredWidth: 28
                Layout.preferredHeight: 28
                running: panel.voiceNotes.isProcessing || panel.voiceNotes.isStarting
                visible: running
            }
            Label {
                objectName: "recordingStatus"
                text: panel.voiceNotes.isProcessing ? qsTr("Transcribing your recording...")
                    : panel.voiceNotes.isStarting ? qsTr("Opening the microphone...")
                    : panel.voiceNotes.isRecording ? qsTr("Recording... Click to stop")
                    : qsTr("Click the microphone to start recording")
                color: Theme.secondaryTextColor
            }
        }

        RowLayout {
            Layout.fillWidth: true
            visible: panel.voiceNotes.errorMessage.length > 0
            spacing: 8
            Label {
                objectName: "voiceNotesError"
                Layout.fillWidth: true
                text: panel.voiceNotes.errorMessage
                color: Theme.warningColor
                wrapMode: Text.Wrap
            }
            PlainButton {
                objectName: "retryButton"
                visible: panel.voiceNotes.canRetry
                text: qsTr("Retry")
                onClicked: panel.voiceNotes.retryTranscription()
            }
            Button {
                id: dismissButton
                background: QuietBackground { owner: dismissButton }
                flat: true
                text: qsTr("Dismiss")
                onClicked: panel.voiceNotes.dismissError()
            }
        }
    }
}
