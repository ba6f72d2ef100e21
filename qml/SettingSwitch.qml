import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// An on/off setting with a line under it saying what it does. The track and knob are plain
// shapes, as the sidebar's Dark Mode switch's are: Material's knob is a shader effect the
// software renderer leaves out.
ColumnLayout {
    id: setting

    property alias text: control.text
    property alias checked: control.checked
    property string explanation
    property alias switchName: control.objectName

    signal toggled(bool checked)

    spacing: 2

    Switch {
        id: control
        Layout.fillWidth: true
        Accessible.name: text
        Accessible.description: setting.explanation
        onToggled: setting.toggled(checked)
        Keys.onReturnPressed: {
            toggle()
            toggled()
        }

        indicator: Rectangle {
            x: control.leftPadding
            y: control.topPadding + (control.availableHeight - height) / 2
            implicitWidth: 40
            implicitHeight: 22
            radius: height / 2
            color: control.checked ? Theme.accentColor : Theme.controlColor
            border.color: control.checked ? Theme.accentColor : Theme.secondaryTextColor

            Rectangle {
                width: 16
                height: 16
                radius: 8
                y: 3
                x: control.checked ? parent.width - width - 3 : 3
                color: control.checked ? Theme.onAccentColor : Theme.secondaryTextColor
            }

            FocusRing {
                owner: control
            }
        }
    }

    Label {
        Layout.fillWidth: true
        Layout.leftMargin: 56
        visible: text.length > 0
        text: setting.explanation
        color: Theme.secondaryTextColor
        font.pixelSize: 12
        wrapMode: Text.Wrap
    }
}
