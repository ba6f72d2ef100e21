import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// One sidebar row: its symbol and label, marked while selected and ringed while the keyboard
// cursor of the list is on it. The list takes the focus, not the row.
ItemDelegate {
    id: entry

    required property int index
    required property string label
    required property string symbol
    required property bool selected
    property bool keyboardCurrent: false

    signal activated

    objectName: "sidebar:" + label
    height: 40
    focusPolicy: Qt.NoFocus
    highlighted: selected
    Accessible.name: label
    Accessible.role: Accessible.ListItem
    Accessible.selected: selected
    onClicked: activated()

    background: Rectangle {
        anchors.fill: parent
        anchors.leftMargin: 8
        anchors.rightMargin: 8
        radius: 8
        color: entry.selected ? Theme.selectionColor : entry.hovered ? Theme.hoverColor : "transparent"
        border.width: entry.keyboardCurrent ? 2 : 0
        border.color: Theme.focusColor
    }

    contentItem: RowLayout {
        spacing: 12
        SymbolIcon {
            Layout.leftMargin: 10
            symbol: entry.symbol
            size: 20
            color: entry.selected ? Theme.accentColor : Theme.secondaryTextColor
        }
        // The same weight whether selected or not, so that a long name that fits stays whole.
        Label {
            Layout.fillWidth: true
            text: entry.label
            elide: Text.ElideRight
        }
    }
}
