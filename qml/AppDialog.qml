import QtQuick
import QtQuick.Controls
import Zentrik

// A modal dialog in the middle of the window with an opaque body in the theme's popup colour.
// Material paints a dialog's body through a shader-made shadow that the software renderer
// skips, which left the texts floating over the screen behind; this body is a plain
// rectangle. Escape closes it.
Dialog {
    id: dialog

    objectName: "appDialog"
    parent: Overlay.overlay
    anchors.centerIn: parent
    modal: true
    closePolicy: Popup.CloseOnEscape
    // Plain appearance: a scaled, fading body left a trace on screen after closing.
    enter: null
    exit: null

    background: Rectangle {
        objectName: "dialogBody"
        color: Theme.popupColor
        radius: 12
        border.color: Theme.cardBorderColor
    }

    header: Label {
        visible: dialog.title.length > 0
        text: dialog.title
        padding: 24
        bottomPadding: 0
        font.bold: true
        font.pixelSize: 18
        elide: Label.ElideRight
        Accessible.role: Accessible.Heading
    }

    Overlay.modal: Rectangle {
        color: Qt.rgba(0, 0, 0, 0.45)
    }
}
