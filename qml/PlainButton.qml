import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// A button that is not the screen's main action: a quiet fill with a border, and a marked
// state while checked (suggestion chips, page chips). Drawn without Material's shader-made
// shadow so that it looks like a button under the software renderer too. Return presses it.
Button {
    id: control

    // A symbol name drawn before the label, empty for none.
    property string symbol
    property real radius: 6
    readonly property color labelColor: enabled ? Theme.textColor : Theme.secondaryTextColor

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
            color: control.labelColor
            font.bold: control.checked
            horizontalAlignment: Text.AlignHCenter
            elide: Text.ElideRight
        }
    }

    background: Rectangle {
        implicitWidth: 64
        implicitHeight: 36
        radius: control.radius
        color: control.checked ? Qt.tint(Theme.cardColor, Theme.selectionColor)
             : control.down ? Qt.darker(Theme.controlColor, 1.08)
             : control.hovered ? Qt.tint(Theme.controlColor, Theme.hoverColor)
             : Theme.controlColor
        border.width: control.checked ? 2 : 1
        border.color: control.checked ? Theme.accentColor : Theme.cardBorderColor

        FocusRing {
            owner: control
        }
    }
}
