import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// Asks before a note is deleted; Escape keeps it.
Dialog {
    id: dialog

    required property VoiceNotesViewModel voiceNotes

    objectName: "deleteNoteDialog"
    parent: Overlay.overlay
    anchors.centerIn: parent
    width: Math.min(parent ? parent.width - 80 : 480, 480)
    modal: true
    visible: voiceNotes.showDeleteConfirmation
    closePolicy: Popup.CloseOnEscape
    title: qsTr("Delete Voice Note?")
    onClosed: voiceNotes.cancelDelete()

    Label {
        width: parent.width
        text: qsTr("\"%1\" will be deleted. This cannot be undone.").arg(dialog.voiceNotes.pendingDeleteTitle)
        wrapMode: Text.Wrap
    }

    footer: DialogButtonBox {
        Button {
            objectName: "cancelDeleteButton"
            text: qsTr("Cancel")
            flat: true
            onClicked: dialog.voiceNotes.cancelDelete()
        }
        AccentButton {
            objectName: "confirmDeleteButton"
            text: qsTr("Delete")
            onClicked: dialog.voiceNotes.confirmDelete()
        }
    }
}
