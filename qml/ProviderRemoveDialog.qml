import QtQuick
import QtQuick.Controls
import Zentrik

// Asks before a custom provider goes, with its key; Escape keeps it. Cancel has the focus, so
// a stray Return removes nothing.
AppDialog {
    id: dialog

    property string providerName

    signal confirmed(string name)

    function ask(name: string) {
        providerName = name
        open()
    }

    objectName: "removeProviderDialog"
    width: Math.min(parent ? parent.width - 80 : 480, 480)
    title: qsTr("Remove Provider?")
    onOpened: cancelButton.forceActiveFocus(Qt.TabFocusReason)

    Label {
        width: parent.width
        text: qsTr("\"%1\" and its stored key will be removed; a reply it is writing stops where it is.").arg(dialog.providerName)
        wrapMode: Text.Wrap
    }

    footer: DialogFooter {
        PlainButton {
            id: cancelButton
            objectName: "cancelRemoveProviderButton"
            text: qsTr("Cancel")
            onClicked: dialog.reject()
        }
        AccentButton {
            objectName: "confirmRemoveProviderButton"
            text: qsTr("Remove")
            destructive: true
            onClicked: {
                dialog.accept()
                dialog.confirmed(dialog.providerName)
            }
        }
    }
}
