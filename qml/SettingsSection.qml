import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// A titled group of settings on a card.
Rectangle {
    id: section

    property string title
    default property alias content: column.data

    Layout.fillWidth: true
    implicitHeight: column.implicitHeight + 32
    radius: 12
    color: Theme.cardColor
    border.color: Theme.cardBorderColor

    ColumnLayout {
        id: column
        anchors.fill: parent
        anchors.margins: 16
        spacing: 10

        Label {
            text: section.title
            font.pixelSize: 15
            font.bold: true
            Accessible.role: Accessible.Heading
        }
    }
}
