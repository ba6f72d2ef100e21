import QtQuick
import QtQuick.Controls
import QtQuick.Dialogs
import QtQuick.Layouts
import Zentrik

// Exports one conversation or all of them: first the format, then where the file goes. The
// history writes the file in the background and says how it went (operationFinished).
AppDialog {
    id: dialog

    // The conversation to export; empty for all of them.
    property string conversationId
    property string conversationTitle
    readonly property string format: jsonChoice.checked ? "json" : "md"

    function exportConversation(id, title) {
        conversationId = id
        conversationTitle = title
        open()
    }

    function exportAll() {
        conversationId = ""
        conversationTitle = ""
        open()
    }

    objectName: "historyExportDialog"
    width: Math.min(parent ? parent.width - 80 : 480, 480)
    title: conversationId.length > 0 ? qsTr("Export Conversation") : qsTr("Export All Conversations")
    onOpened: chooseButton.forceActiveFocus(Qt.TabFocusReason)
    onAccepted: {
        saveDialog.selectedFile = HistoryService.suggestedExportFile(conversationTitle, format)
        saveDialog.open()
    }

    // The file picker beside it is content too, so the height is not worked out by itself.
    contentHeight: choices.implicitHeight

    ColumnLayout {
        id: choices
        width: parent.width
        spacing: 4

        Label {
            Layout.fillWidth: true
            text: dialog.conversationId.length > 0 ? qsTr("\"%1\" as:").arg(dialog.conversationTitle)
                                                   : qsTr("Every stored conversation as:")
            wrapMode: Text.Wrap
            elide: Text.ElideRight
            maximumLineCount: 2
        }
        RadioButton {
            id: markdownChoice
            objectName: "markdownChoice"
            checked: true
            text: qsTr("Markdown, to read or share")
            Accessible.name: text
        }
        RadioButton {
            id: jsonChoice
            objectName: "jsonChoice"
            text: qsTr("JSON, to import again (here or elsewhere)")
            Accessible.name: text
        }
    }

    footer: DialogFooter {
        PlainButton {
            objectName: "cancelExportButton"
            text: qsTr("Cancel")
            onClicked: dialog.reject()
        }
        AccentButton {
            id: chooseButton
            objectName: "chooseExportFileButton"
            text: qsTr("Choose File…")
            onClicked: dialog.accept()
        }
    }

    FilePicker {
        id: saveDialog
        objectName: "historyExportFileDialog"
        title: dialog.title
        fileMode: FileDialog.SaveFile
        acceptLabel: qsTr("Export")
        defaultSuffix: dialog.format
        nameFilters: dialog.format === "json" ? [qsTr("JSON files (*.json)")] : [qsTr("Markdown files (*.md)")]
        onAccepted: file => {
            if (dialog.conversationId.length > 0)
                HistoryService.exportConversation(dialog.conversationId, dialog.format, file)
            else
                HistoryService.exportAll(dialog.format, file)
        }
    }
}
