import QtQuick
import QtQuick.Controls
import Zentrik

// The day headings of the History list (Today, Yesterday, Previous 7 days, Older), in a file
// of their own for the same reason as SidebarSectionDelegate.
Component {
    Item {
        id: header

        required property string section

        width: ListView.view.width
        implicitHeight: heading.implicitHeight + 22

        Label {
            id: heading
            anchors.left: parent.left
            anchors.bottom: parent.bottom
            anchors.leftMargin: 4
            anchors.bottomMargin: 6
            text: header.section
            font.pixelSize: 12
            font.bold: true
            font.capitalization: Font.AllUppercase
            color: Theme.secondaryTextColor
            Accessible.role: Accessible.Heading
        }
    }
}
