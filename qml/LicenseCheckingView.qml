import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// Shown while the licence key is being verified.
Item {
    objectName: "licenseChecking"

    ColumnLayout {
        anchors.centerIn: parent
        spacing: 16

        BusyIndicator {
            Layout.alignment: Qt.AlignHCenter
            running: true
            Accessible.name: checkingLabel.text
        }

        Label {
            id: checkingLabel
            Layout.alignment: Qt.AlignHCenter
            text: qsTr("Checking license...")
            font.pixelSize: 17
        }
    }
}
