import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// Asks before a note is deleted; Escape keeps it. Cancel has the focus, so a stray Return
// deletes nothing.
AppDialog {
    id: dialog

    required property VoiceNotesViewModel voiceNotes

    objectName: "deleteNoteDialog"
    width: Math.min(parent ? parent.width - 80 : 480, 480)
    visible: voiceNotes.showDeleteConfirmation
    onOpened: cancelButton.forceActiveFocus(Qt.TabFocusReason)
    title: qsTr("Delete Voice Note?")
    onClosed: voiceNotes.cancelDelete()

    Label {
        width: parent.width
        text: qsTr("\"%1\" will be deleted. This cannot be undone.").arg(dialog.voiceNotes.pendingDeleteTitle)
        wrapMode: Text.Wrap
    }

    footer: DialogFooter {
        PlainButton {
            id: cancelButton
            objectName: "cancelDeleteButton"
            text: qsTr("Cancel")
            onClicked: dialog.voiceNotes.cancelDelete()
        }
        AccentButton {
            objectName: "confirmDeleteButton"
            text: qsTr("Delete")
            destructive: true
            onClicked: dialog.voiceNotes.confirmDelete()
        }
    }
}
