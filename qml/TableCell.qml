import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// One cell of a reply's table.
Rectangle {
    id: cell

    property alias text: label.text
    property bool isHeader: false
    property int alignment: Qt.AlignLeft

    Layout.fillWidth: true
    Layout.fillHeight: true
    implicitWidth: Math.min(label.implicitWidth, 320) + 20
    implicitHeight: label.implicitHeight + 12
    color: isHeader ? Theme.codeBackgroundColor : "transparent"
    border.color: Theme.cardBorderColor

    RichLabel {
        id: label
        anchors.fill: parent
        anchors.margins: 6
        anchors.leftMargin: 10
        anchors.rightMargin: 10
        horizontalAlignment: cell.alignment === Qt.AlignRight ? TextEdit.AlignRight
                             : cell.alignment === Qt.AlignHCenter ? TextEdit.AlignHCenter : TextEdit.AlignLeft
        font.bold: cell.isHeader
    }
}
