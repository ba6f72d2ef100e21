import QtQuick
import QtQuick.Controls
import QtQuick.Templates as T
import Zentrik

// The background of a flat button, a tool button or a list row: a tint while hovered, pressed
// or highlighted, and the focus ring. It replaces Material's ripple, which the software
// renderer draws as a large translucent disc in the window's top-left corner.
Rectangle {
    required property T.AbstractButton owner
    property bool highlighted: false

    implicitWidth: 36
    implicitHeight: 36
    radius: 6
    color: owner.down ? Theme.selectionColor
         : highlighted || owner.hovered ? Theme.hoverColor
         : "transparent"

    FocusRing {
        owner: parent.owner
    }
}
