import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// A warning line that stands out from the screen around it.
Rectangle {
    id: banner

    property string text
    property string symbol: "exclamationmark.triangle.fill"
    property color tint: Theme.warningColor

    implicitHeight: row.implicitHeight + 24
    radius: 10
    color: Qt.rgba(tint.r, tint.g, tint.b, 0.14)
    border.color: tint
    Accessible.role: Accessible.AlertMessage
    Accessible.name: text

    RowLayout {
        id: row
        anchors.fill: parent
        anchors.margins: 12
        spacing: 10
        SymbolIcon {
            Layout.alignment: Qt.AlignTop
            symbol: banner.symbol
            color: banner.tint
        }
        Label {
            Layout.fillWidth: true
            text: banner.text
            wrapMode: Text.Wrap
        }
    }
}
