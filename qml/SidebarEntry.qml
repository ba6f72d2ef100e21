import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// One sidebar row: its symbol and label, marked while selected.
ItemDelegate {
    id: entry

    required property int index
    required property string label
    required property string symbol
    required property bool selected

    signal activated

    objectName: "sidebar:" + label
    height: 40
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
    }

    contentItem: RowLayout {
        spacing: 12
        SymbolIcon {
            Layout.leftMargin: 10
            symbol: entry.symbol
            size: 20
            color: entry.selected ? Theme.accentColor : Theme.secondaryTextColor
        }
        Label {
            Layout.fillWidth: true
            text: entry.label
            elide: Text.ElideRight
            font.bold: entry.selected
        }
    }
}
