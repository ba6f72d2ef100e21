import QtQuick
import QtQuick.Controls
import Zentrik

// A heading above a group of sidebar entries; a little space where a group has no name.
Item {
    required property string section

    implicitHeight: section.length > 0 ? heading.implicitHeight + 18 : 8

    Label {
        id: heading
        visible: parent.section.length > 0
        anchors.left: parent.left
        anchors.bottom: parent.bottom
        anchors.leftMargin: 18
        anchors.bottomMargin: 4
        text: parent.section
        font.pixelSize: 12
        font.bold: true
        font.capitalization: Font.AllUppercase
        color: Theme.secondaryTextColor
    }
}
