import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// The notice after a save; Escape, OK or a click outside dismiss it.
Dialog {
    id: notice

    required property SettingsViewModel settings

    objectName: "saveNotice"
    parent: Overlay.overlay
    anchors.centerIn: parent
    modal: true
    title: qsTr("Settings Saved")
    visible: settings.showingSaveConfirmation
    standardButtons: Dialog.Ok
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
}
