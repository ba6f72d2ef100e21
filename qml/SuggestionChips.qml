import QtQuick
import QtQuick.Controls
import Zentrik

// The ready-made requests of a chat tool; the chosen one is checked, choosing it again
// clears it.
Flow {
    id: chips

    property var suggestions: []
    property string selected

    signal toggled(string label)

    spacing: 8

    Repeater {
        model: chips.suggestions
        Button {
            required property string modelData
            checkable: true
            checked: chips.selected === modelData
            text: modelData
            Accessible.name: modelData
            onClicked: chips.toggled(modelData)
        }
    }
}
