import QtQuick
import QtQuick.Dialogs
import Zentrik

// The dialog of a FilePicker, made by the picker when it first opens.
FileDialog {
    required property FilePicker picker

    objectName: picker.objectName + ".dialog"
    title: picker.title
    nameFilters: picker.nameFilters
    fileMode: picker.fileMode
    defaultSuffix: picker.defaultSuffix
    acceptLabel: picker.acceptLabel
    onAccepted: picker.accepted(selectedFile)
}
