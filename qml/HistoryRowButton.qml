import QtQuick
import QtQuick.Controls
import Zentrik

// A small symbol-only action of a History row, named for screen readers and its tool tip.
// The list's keys reach the same actions (F2, Ctrl+E, Delete), so it takes no Tab stop.
ToolButton {
    id: button

    property string symbol

    focusPolicy: Qt.NoFocus
    implicitWidth: 36
    implicitHeight: 36
    Accessible.name: text
    ToolTip.visible: hovered
    ToolTip.text: text
    ToolTip.delay: 500
    display: AbstractButton.IconOnly

    contentItem: SymbolIcon {
        symbol: button.symbol
        size: 20
        color: button.hovered ? Theme.textColor : Theme.secondaryTextColor
    }

    background: Rectangle {
        radius: 8
        color: button.down ? Theme.selectionColor : button.hovered ? Theme.hoverColor : "transparent"
    }
}
