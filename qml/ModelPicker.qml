pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// Picks one model of a catalogue; each entry shows its name with its badge (text models)
// or its feature tags (image models).
SelectBox {
    id: picker

    property var models: []
    property string selectedId
    property string accessibleName

    signal picked(string id)

    model: models
    textRole: "name"
    valueRole: "id"
    currentIndex: models.findIndex(entry => entry.id === selectedId)
    implicitContentWidthPolicy: ComboBox.WidestText
    Accessible.name: accessibleName
    onActivated: picked(currentValue)

    contentItem: Control {
        implicitWidth: implicitContentWidth + leftPadding
        implicitHeight: implicitContentHeight
        padding: 0
        leftPadding: 12
        contentItem: ModelPickerRow {
            entry: picker.currentIndex >= 0 ? picker.models[picker.currentIndex] : ({})
            showGroup: true
        }
    }

    // A custom provider's models follow its name, shown once above the first of them.
    delegate: ItemDelegate {
        id: modelRow
        required property var modelData
        required property int index
        readonly property string group: modelData.group ?? ""
        readonly property bool startsGroup: group.length > 0
                                            && (index === 0 || (picker.models[index - 1].group ?? "") !== group)
        readonly property real headerHeight: startsGroup ? groupHeader.implicitHeight + 12 : 0

        objectName: "modelOption:" + modelData.id
        width: ListView.view ? ListView.view.width : implicitWidth
        topInset: headerHeight
        topPadding: headerHeight + verticalPadding
        highlighted: picker.highlightedIndex === index
        Accessible.name: group.length > 0 ? group + ", " + modelData.name : modelData.name
        background: QuietBackground { owner: modelRow; highlighted: modelRow.highlighted }
        contentItem: ModelPickerRow {
            entry: modelRow.modelData
            showDetail: modelRow.group.length === 0
        }

        Label {
            id: groupHeader
            objectName: "modelGroup:" + modelRow.group
            visible: modelRow.startsGroup
            x: modelRow.leftPadding
            y: 8
            width: modelRow.availableWidth
            text: modelRow.group
            color: Theme.secondaryTextColor
            font.pixelSize: 12
            font.bold: true
            font.capitalization: Font.AllUppercase
            elide: Text.ElideRight
            Accessible.role: Accessible.Heading
        }
    }
}
