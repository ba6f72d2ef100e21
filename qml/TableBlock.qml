pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// A table with its header row, each column aligned as the reply asked. A table wider than
// the reply scrolls sideways with its scroll bar; the mouse wheel passes through to the
// conversation, so reading on never stops over a table.
Flickable {
    id: tableBlock

    objectName: "replyTable"

    property var header: []
    property var rows: []
    property var alignments: []

    implicitHeight: grid.implicitHeight + (horizontalBar.visible ? horizontalBar.height : 0)
    contentWidth: grid.implicitWidth
    contentHeight: grid.implicitHeight
    clip: true
    interactive: false
    flickableDirection: Flickable.HorizontalFlick
    ScrollBar.horizontal: ScrollBar {
        id: horizontalBar
        policy: tableBlock.contentWidth > tableBlock.width ? ScrollBar.AlwaysOn : ScrollBar.AlwaysOff
    }

    GridLayout {
        id: grid
        columns: Math.max(1, tableBlock.header.length)
        rowSpacing: 0
        columnSpacing: 0

        Repeater {
            model: tableBlock.header
            delegate: TableCell {
                required property var modelData
                required property int index
                text: modelData
                isHeader: true
                alignment: tableBlock.alignments[index] ?? Qt.AlignLeft
            }
        }

        Repeater {
            model: tableBlock.rows.length * grid.columns
            delegate: TableCell {
                required property int index
                text: tableBlock.rows[Math.floor(index / grid.columns)][index % grid.columns] ?? ""
                alignment: tableBlock.alignments[index % grid.columns] ?? Qt.AlignLeft
            }
        }
    }
}
