pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// Home, the standalone tools, the categories and Settings, with the appearance switch at
// the bottom. The list is one Tab stop: the arrow keys move within it, Return or Space opens
// the entry under the focus ring.
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
            Accessible.role: Accessible.Heading
        }

        ListView {
            id: entries
            objectName: "sidebarList"
            Layout.fillWidth: true
            Layout.fillHeight: true
            clip: true
            boundsBehavior: Flickable.StopAtBounds
            activeFocusOnTab: true
            keyNavigationEnabled: true
            highlightFollowsCurrentItem: false
            Accessible.role: Accessible.List
            Accessible.name: qsTr("Navigation")
            model: SidebarModel {
                id: sidebarModel
                navigation: sidebar.navigation
            }
            section.property: "section"
            section.delegate: SidebarSectionDelegate {}
            delegate: SidebarEntry {
                width: entries.width
                keyboardCurrent: entries.activeFocus && ListView.isCurrentItem
                onActivated: sidebarModel.activate(index)
                // The keyboard cursor starts on the open screen.
                onSelectedChanged: if (selected) entries.currentIndex = index
                Component.onCompleted: if (selected) entries.currentIndex = index
            }
            onCurrentIndexChanged: positionViewAtIndex(currentIndex, ListView.Contain)
            Keys.onReturnPressed: sidebarModel.activate(currentIndex)
            Keys.onEnterPressed: sidebarModel.activate(currentIndex)
            Keys.onSpacePressed: sidebarModel.activate(currentIndex)
            // Always shown when entries are out of view, so a short window still shows there is more.
            ScrollBar.vertical: ScrollBar {
                policy: entries.contentHeight > entries.height ? ScrollBar.AlwaysOn : ScrollBar.AsNeeded
            }
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
            Keys.onReturnPressed: {
                toggle()
                toggled()
            }

            // A track and a knob of plain shapes: Material's knob is drawn through a shader
            // effect that the software renderer leaves out.
            indicator: Rectangle {
                objectName: "darkModeTrack"
                x: darkModeSwitch.leftPadding
                y: darkModeSwitch.topPadding + (darkModeSwitch.availableHeight - height) / 2
                implicitWidth: 40
                implicitHeight: 22
                radius: height / 2
                color: darkModeSwitch.checked ? Theme.accentColor : Theme.controlColor
                border.color: darkModeSwitch.checked ? Theme.accentColor : Theme.secondaryTextColor

                Rectangle {
                    objectName: "darkModeKnob"
                    width: 16
                    height: 16
                    radius: 8
                    y: 3
                    x: darkModeSwitch.checked ? parent.width - width - 3 : 3
                    color: darkModeSwitch.checked ? Theme.onAccentColor : Theme.secondaryTextColor
                }

                FocusRing {
                    owner: darkModeSwitch
                }
            }
        }
    }
}
