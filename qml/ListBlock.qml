pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import QtQuick.Controls
import Zentrik

// A bulleted or numbered list; nested items arrive flattened with their depth.
ColumnLayout {
    id: listBlock

    property var items: []

    spacing: 4

    Repeater {
        model: listBlock.items
        delegate: RowLayout {
            id: entry
            required property var modelData
            Layout.fillWidth: true
            Layout.leftMargin: 22 * modelData.depth
            spacing: 8

            Label {
                Layout.alignment: Qt.AlignTop
                Layout.minimumWidth: 18
                text: entry.modelData.task === "checked" ? "☑" : entry.modelData.task === "unchecked" ? "☐" : entry.modelData.marker
                horizontalAlignment: Text.AlignRight
                font.pixelSize: 15
                color: Theme.secondaryTextColor
            }

            RichLabel {
                Layout.fillWidth: true
                text: entry.modelData.text
            }
        }
    }
}
