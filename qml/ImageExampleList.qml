pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// "Examples You Can Use": a header that opens and closes the list, and one card per example
// with a button that copies its text into the prompt.
ColumnLayout {
    id: list

    property var examples: []
    property bool expanded: false
    property int copiedIndex: -1

    signal toggled()
    signal copyRequested(int index)

    spacing: 10

    Button {
        id: examplesToggleButton
        background: QuietBackground { owner: examplesToggleButton }
        objectName: "examplesToggle"
        flat: true
        Accessible.name: qsTr("Examples You Can Use")
        onClicked: list.toggled()
        contentItem: RowLayout {
            spacing: 8
            Label {
                text: qsTr("Examples You Can Use")
                font.bold: true
                font.pixelSize: 17
            }
            SymbolIcon {
                symbol: list.expanded ? "chevron.up" : "chevron.down"
                size: 18
            }
        }
    }

    Repeater {
        model: list.expanded ? list.examples : []
        delegate: ImageExampleCard {
            required property var modelData
            required property int index
            Layout.fillWidth: true
            title: modelData.title
            text: modelData.text
            copied: index === list.copiedIndex
            onCopyClicked: list.copyRequested(index)
        }
    }
}
