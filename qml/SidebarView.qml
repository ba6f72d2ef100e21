import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// Home, the standalone tools, the categories and Settings, with the appearance switch at
// the bottom.
Rectangle {
    id: sidebar

    required property ContentViewModel navigation

    objectName: "sidebar"
    color: Theme.sidebarColor

    ColumnLayout {
        anchors.fill: parent
        spacing: 0

        Label {
            Layout.margins: 18
            Layout.bottomMargin: 8
            text: qsTr("Zentrik")
            font.pixelSize: 22
            font.bold: true
        }

        ListView {
            id: entries
            objectName: "sidebarList"
            Layout.fillWidth: true
            Layout.fillHeight: true
            clip: true
            boundsBehavior: Flickable.StopAtBounds
            Accessible.role: Accessible.List
            Accessible.name: qsTr("Navigation")
            model: SidebarModel {
                id: sidebarModel
                navigation: sidebar.navigation
            }
            section.property: "section"
            section.delegate: SidebarSectionHeader {
                width: entries.width
            }
            delegate: SidebarEntry {
                width: entries.width
                onActivated: sidebarModel.activate(index)
            }
            ScrollBar.vertical: ScrollBar {}
        }

        Switch {
            id: darkModeSwitch
            objectName: "darkModeSwitch"
            Layout.fillWidth: true
            Layout.margins: 10
            text: qsTr("Dark Mode")
            checked: Theme.isDarkMode
            Accessible.name: text
            onToggled: Theme.isDarkMode = checked
        }
    }
}
