import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// A table with its header row, each column aligned as the reply asked.
ScrollView {
    id: tableBlock

    property var header: []
    property var rows: []
    property var alignments: []

    implicitHeight: grid.implicitHeight + (ScrollBar.horizontal.visible ? 12 : 0)
    contentWidth: grid.implicitWidth
    clip: true

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
