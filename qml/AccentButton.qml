import QtQuick
import QtQuick.Controls
import QtQuick.Controls.Material

// The main action of a screen, filled with the accent colour. Material draws a raised
// button's shadow with a shader effect, which the software renderer (no GPU: virtual
// machines, remote sessions, Xvfb) cannot run; the whole background then disappears and
// leaves white text on the page. A plain rectangle looks the same with either renderer.
Button {
    id: control

    highlighted: true

    background: Rectangle {
        implicitWidth: 64
        implicitHeight: control.Material.buttonHeight
        radius: 4
        color: !control.enabled ? control.Material.buttonDisabledColor
             : control.down ? Qt.darker(control.Material.accentColor, 1.15)
             : control.hovered ? Qt.lighter(control.Material.accentColor, 1.1)
             : control.Material.accentColor
        border.width: control.visualFocus ? 2 : 0
        border.color: control.Material.foreground
    }
}
