import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// The notice after a save; Escape, Return (OK has the focus), OK or a click outside dismiss it.
AppDialog {
    id: notice

    required property SettingsViewModel settings

    objectName: "saveNotice"
    closePolicy: Popup.CloseOnEscape | Popup.CloseOnPressOutside
    title: qsTr("Settings Saved")
    visible: settings.showingSaveConfirmation
    onOpened: okButton.forceActiveFocus(Qt.TabFocusReason)
    onClosed: settings.dismissSaveConfirmation()

    RowLayout {
        spacing: 10
        SymbolIcon {
            symbol: "checkmark.circle.fill"
            color: Theme.color("green")
        }
        Label {
            text: qsTr("Your changes have been saved successfully.")
        }
    }

    footer: DialogFooter {
        AccentButton {
            id: okButton
            objectName: "saveNoticeOk"
            text: qsTr("OK")
            DialogButtonBox.buttonRole: DialogButtonBox.AcceptRole
        }
    }
}
