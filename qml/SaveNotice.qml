import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// The notice after a save, or why the save failed; Escape, OK or a click outside dismiss it.
Dialog {
    id: notice

    required property SettingsViewModel settings

    objectName: "saveNotice"
    parent: Overlay.overlay
    anchors.centerIn: parent
    modal: true
    readonly property bool failed: settings.saveError.length > 0

    title: failed ? qsTr("Settings Not Saved") : qsTr("Settings Saved")
    visible: settings.showingSaveConfirmation
    standardButtons: Dialog.Ok
    onClosed: settings.dismissSaveConfirmation()

    RowLayout {
        spacing: 10
        SymbolIcon {
            symbol: notice.failed ? "exclamationmark.triangle.fill" : "checkmark.circle.fill"
            color: notice.failed ? Theme.color("red") : Theme.color("green")
        }
        Label {
            objectName: "saveNoticeText"
            Layout.maximumWidth: 420
            wrapMode: Text.Wrap
            text: notice.failed ? settings.saveError : qsTr("Your changes have been saved successfully.")
        }
    }
}
