import QtQuick
import QtQuick.Controls
import Zentrik

// What a tool name without a screen leads to.
Item {
    objectName: "toolNotImplementedView"

    Label {
        anchors.centerIn: parent
        text: qsTr("Tool not implemented")
        font.pixelSize: 20
        color: Theme.secondaryTextColor
    }
}
