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
        }
    }

    delegate: ItemDelegate {
        id: modelRow
        background: QuietBackground { owner: modelRow; highlighted: modelRow.highlighted }
        required property var modelData
        required property int index
        width: ListView.view ? ListView.view.width : implicitWidth
        highlighted: picker.highlightedIndex === index
        Accessible.name: modelData.name
        contentItem: ModelPickerRow {
            entry: modelRow.modelData
            showDetail: true
        }
    }
}
