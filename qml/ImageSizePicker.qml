pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

// "Select Image Size" and one choice per size label.
ColumnLayout {
    id: picker

    property var labels: []
    property int selectedIndex: 0

    signal picked(int index)

    spacing: 6

    Label {
        text: qsTr("Select Image Size")
        font.bold: true
    }

    RowLayout {
        spacing: 8
        Repeater {
            model: picker.labels
            delegate: RadioButton {
                required property string modelData
                required property int index
                objectName: "size_" + modelData
                text: modelData
                checked: index === picker.selectedIndex
                onClicked: picker.picked(index)
            }
        }
    }
}
