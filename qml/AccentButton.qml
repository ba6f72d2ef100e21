import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// The main action of a screen, filled with the accent colour (or red when it destroys
// something). Material draws a raised button through a shader effect that the software
// renderer cannot run, which leaves only the label on the page; a plain rectangle looks the
// same with either renderer. Return presses the button like Space does.
Button {
    id: control

    property bool destructive: false
    // A symbol name drawn before the label, empty for none.
    property string symbol

    readonly property color fill: destructive ? Theme.dangerColor : Theme.accentColor
    readonly property color ink: destructive ? Theme.onDangerColor : Theme.onAccentColor
    readonly property color labelColor: enabled ? ink : Theme.secondaryTextColor

    Accessible.name: text
    Keys.onReturnPressed: if (enabled) clicked()
    Keys.onEnterPressed: if (enabled) clicked()

    contentItem: RowLayout {
        spacing: 6
        SymbolIcon {
            visible: control.symbol.length > 0
            symbol: control.symbol
            size: 18
            color: control.labelColor
        }
        Label {
            Layout.fillWidth: true
            text: control.text
            font: control.font
            color: control.labelColor
            horizontalAlignment: Text.AlignHCenter
            elide: Text.ElideRight
        }
    }

    background: Rectangle {
        implicitWidth: 64
        implicitHeight: 36
        radius: 6
        color: !control.enabled ? Theme.controlColor
             : control.down ? Qt.darker(control.fill, 1.15)
             : control.hovered ? Qt.lighter(control.fill, 1.08)
             : control.fill

        FocusRing {
            owner: control
        }
    }
}
