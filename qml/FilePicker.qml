import QtQuick
import QtQuick.Controls
import QtQuick.Dialogs
import QtQuick.Layouts
import Zentrik

// A file dialog that cannot bring the program down: it is made on first use, and where it
// cannot open (a module missing from the system) the window says so instead. The desktop's
// own dialog is used where there is one; otherwise Qt Quick draws one in the window.
Item {
    id: picker

    property string title
    property var nameFilters: []
    property int fileMode: FileDialog.OpenFile
    property string defaultSuffix
    property url selectedFile
    // The accept button's text; empty for the dialog's own ("Open").
    property string acceptLabel
    property alias requiredModule: check.requiredModule
    readonly property bool isOpen: dialog !== null && dialog.visible
    property string problem
    readonly property FileDialog dialog: loader.item as FileDialog

    signal accepted(url file)

    function open() {
        problem = check.problem()
        if (problem.length > 0) {
            notice.open()
            return
        }
        if (dialog === null)
            loader.setSource(Qt.resolvedUrl("FilePickerDialog.qml"), { picker: picker })
        if (String(picker.selectedFile).length > 0)
            dialog.selectedFile = picker.selectedFile
        dialog.open()
    }

    visible: false

    FileDialogCheck {
        id: check
    }

    // Empty until the first open; the dialog gets this picker as it is made.
    Loader {
        id: loader
    }

    AppDialog {
        id: notice
        objectName: picker.objectName + ".problem"
        width: Math.min(parent ? parent.width - 80 : 520, 520)
        title: picker.title
        onOpened: okButton.forceActiveFocus(Qt.TabFocusReason)

        Label {
            width: parent.width
            text: picker.problem
            wrapMode: Text.Wrap
        }

        footer: DialogFooter {
            AccentButton {
                id: okButton
                text: qsTr("OK")
                onClicked: notice.accept()
            }
        }
    }
}
