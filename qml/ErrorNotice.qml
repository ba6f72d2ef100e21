import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// A failure as the screen shows it, with a way to Settings when that is where it is fixed.
RowLayout {
    id: notice

    property string text
    property bool opensSettings: false
    property string labelName: "errorText"

    signal openSettingsRequested

    visible: text.length > 0
    spacing: 12

    Label {
        objectName: notice.labelName
        Layout.fillWidth: true
        text: notice.text
        color: Theme.warningColor
        wrapMode: Text.Wrap
    }

    Button {
        objectName: "openSettingsButton"
        Layout.alignment: Qt.AlignTop
        visible: notice.opensSettings
        text: qsTr("Open Settings")
        Accessible.name: text
        onClicked: notice.openSettingsRequested()
    }
}
