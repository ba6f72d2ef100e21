import QtQuick
import QtQuick.Templates as T
import Zentrik

// The ring around the control that has keyboard focus, drawn just outside its background so
// that it shows on any fill.
Rectangle {
    required property T.Control owner

    anchors.fill: parent
    anchors.margins: -3
    // Just outside the corners of the background it sits in (4 where that has none).
    radius: ((parent as Rectangle)?.radius ?? 1) + 3
    color: "transparent"
    border.width: 2
    border.color: Theme.focusColor
    visible: owner.visualFocus
}
