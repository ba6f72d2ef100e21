import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// Edits a note's title and transcription. Save keeps the note's id and date; Cancel and
// Escape leave the note as it was.
AppDialog {
    id: dialog

    required property VoiceNoteEditor editor

    objectName: "voiceNoteEditor"
    width: Math.min(parent ? parent.width - 80 : 640, 640)
    visible: editor.isOpen
    onOpened: titleField.forceActiveFocus(Qt.TabFocusReason)
    title: qsTr("Edit Voice Note")
    onClosed: if (editor.isOpen) editor.cancel()

    ColumnLayout {
        anchors.fill: parent
        spacing: 8

        Label {
            text: qsTr("Title")
            font.bold: true
        }
        TextField {
            id: titleField
            objectName: "noteTitleField"
            Layout.fillWidth: true
            placeholderText: qsTr("Title")
            Accessible.name: qsTr("Title")
            text: dialog.editor.title
            onTextEdited: dialog.editor.title = text
        }
        Label {
            text: qsTr("Transcription")
            font.bold: true
        }
        ScrollView {
            Layout.fillWidth: true
            Layout.preferredHeight: 220
            TextArea {
                objectName: "noteTranscriptionField"
                Accessible.name: qsTr("Transcription")
                wrapMode: TextEdit.Wrap
                text: dialog.editor.transcription
                onTextChanged: if (text !== dialog.editor.transcription) dialog.editor.transcription = text
            }
        }
    }

    footer: DialogFooter {
        PlainButton {
            objectName: "cancelEditButton"
            text: qsTr("Cancel")
            onClicked: dialog.editor.cancel()
        }
        AccentButton {
            objectName: "saveEditButton"
            text: qsTr("Save")
            enabled: dialog.editor.canSave
            onClicked: dialog.editor.save()
        }
    }
}
