import QtQuick
import Zentrik

// The ring around the control that has keyboard focus, drawn just outside its background so
// that it shows on any fill.
Rectangle {
    required property Item owner

    anchors.fill: parent
    anchors.margins: -3
    radius: parent.radius !== undefined ? parent.radius + 3 : 4
    color: "transparent"
    border.width: 2
    border.color: Theme.focusColor
    visible: owner.visualFocus
}
