pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// Record a voice note, have it transcribed, then find, edit, copy or delete notes.
ScrollingPage {
    id: page

    property string copiedNoteId

    objectName: "voiceNotesView"
    maxContentWidth: 900

    VoiceNotesViewModel {
        id: notesModel
        objectName: "voiceNotesViewModel"
        apiManager: APIManager
        onCopyRequested: text => {
            copier.text = text
            copier.copy()
        }
    }

    ClipboardCopier {
        id: copier
        cleanUp: false
        onIsCopiedChanged: if (!isCopied) page.copiedNoteId = ""
    }

    ScreenHeading {
        Layout.fillWidth: true
        title: qsTr("Voice Notes")
        symbol: "mic.fill"
        subtitle: qsTr("Record your thoughts and get them back as text.")
    }

    NoticeBanner {
        objectName: "noMicrophoneNotice"
        Layout.fillWidth: true
        visible: !notesModel.microphoneAvailable
        text: qsTr("No microphone was found. Connect one, or allow Zentrik to use it in your system's privacy settings; it is picked up as soon as it appears. Your saved notes stay available.")
    }

    NoticeBanner {
        objectName: "storageWarning"
        Layout.fillWidth: true
        visible: notesModel.storageWarning.length > 0
        text: notesModel.storageWarning
    }

    VoiceNotesRecorder {
        Layout.fillWidth: true
        voiceNotes: notesModel
    }

    TextField {
        objectName: "searchField"
        Layout.fillWidth: true
        placeholderText: qsTr("Search notes")
        Accessible.name: placeholderText
        text: notesModel.searchText
        onTextEdited: notesModel.searchText = text
    }

    Label {
        objectName: "emptyNotesLabel"
        Layout.fillWidth: true
        Layout.topMargin: 12
        visible: notesModel.notes.count === 0
        text: notesModel.noteCount === 0 ? qsTr("No voice notes yet.") : qsTr("No notes match your search.")
        color: Theme.secondaryTextColor
        horizontalAlignment: Text.AlignHCenter
    }

    Repeater {
        model: notesModel.notes
        VoiceNotesCard {
            Layout.fillWidth: true
            copied: copier.isCopied && page.copiedNoteId === noteId
            onEditRequested: notesModel.editor.open(noteId)
            onDeleteRequested: notesModel.requestDelete(noteId)
            onCopyRequested: {
                page.copiedNoteId = noteId
                notesModel.copyTranscription(noteId)
            }
        }
    }

    VoiceNotesEditor {
        editor: notesModel.editor
    }

    VoiceNotesDeleteDialog {
        voiceNotes: notesModel
    }
}
