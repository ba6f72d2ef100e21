pragma ComponentBehavior: Bound

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
        PlainButton {
            required property string modelData
            objectName: "suggestion:" + modelData
            radius: height / 2
            // The model decides what is chosen; the chip only shows it.
            checkable: false
            checked: chips.selected === modelData
            text: modelData
            Accessible.role: Accessible.CheckBox
            Accessible.checkable: true
            Accessible.checked: checked
            onClicked: chips.toggled(modelData)
        }
    }
}
