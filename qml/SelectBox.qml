pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls
import Zentrik

// A choice from a list, with an opaque field and an opaque list. Material draws both through
// a shader-made shadow that the software renderer skips, which left the list's entries over
// the form behind them.
ComboBox {
    id: control

    background: Rectangle {
        implicitWidth: 120
        implicitHeight: 40
        radius: 6
        color: control.down ? Qt.tint(Theme.cardColor, Theme.hoverColor) : Theme.cardColor
        border.color: control.activeFocus ? Theme.accentColor : Theme.cardBorderColor

        FocusRing {
            owner: control
        }
    }

    // Rows without Material's ripple, which the software renderer draws in the wrong place.
    delegate: ItemDelegate {
        id: row
        required property int index
        required property var modelData
        width: ListView.view ? ListView.view.width : implicitWidth
        text: control.textRole ? modelData[control.textRole] : modelData
        highlighted: control.highlightedIndex === index
        font.bold: control.currentIndex === index
        background: QuietBackground {
            owner: row
            highlighted: row.highlighted
            radius: 0
        }
    }

    popup.topPadding: 6
    popup.bottomPadding: 6
    popup.background: Rectangle {
        objectName: "selectListBody"
        color: Theme.popupColor
        radius: 6
        border.color: Theme.cardBorderColor
    }
}
