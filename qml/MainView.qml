import QtQuick
import QtQuick.Layouts
import Zentrik

// The sidebar on the left, the selected screen on the right.
Item {
    id: main

    required property ContentViewModel navigation

    RowLayout {
        anchors.fill: parent
        spacing: 0

        SidebarView {
            Layout.fillHeight: true
            Layout.preferredWidth: 248
            navigation: main.navigation
        }

        Rectangle {
            Layout.fillHeight: true
            implicitWidth: 1
            color: Theme.cardBorderColor
        }

        ColumnLayout {
            Layout.fillWidth: true
            Layout.fillHeight: true
            spacing: 0

            HistoryNoticeBar {
                Layout.fillWidth: true
            }

            ScreenHost {
                Layout.fillWidth: true
                Layout.fillHeight: true
                navigation: main.navigation
            }
        }
    }
}
