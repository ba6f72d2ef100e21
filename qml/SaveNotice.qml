import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// The notice after a save, or why the save failed; Escape, Return (OK has the focus), OK or a
// click outside dismiss it.
AppDialog {
    id: notice

    required property SettingsViewModel settings

    objectName: "saveNotice"
    closePolicy: Popup.CloseOnEscape | Popup.CloseOnPressOutside
    readonly property bool failed: settings.saveError.length > 0

    title: failed ? qsTr("Settings Not Saved") : qsTr("Settings Saved")
    visible: settings.showingSaveConfirmation
    onOpened: okButton.forceActiveFocus(Qt.TabFocusReason)
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
            text: notice.failed ? notice.settings.saveError : qsTr("Your changes have been saved successfully.")
        }
    }

    footer: DialogFooter {
        AccentButton {
            id: okButton
            objectName: "saveNoticeOk"
            text: qsTr("OK")
            onClicked: notice.accept()
        }
    }
}
