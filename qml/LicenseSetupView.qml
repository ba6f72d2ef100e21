import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// Asks for a licence key when the stored one is missing or was refused.
Item {
    id: setup

    required property LicenseGate gate

    objectName: "licenseSetup"

    ColumnLayout {
        anchors.centerIn: parent
        width: Math.min(parent.width - 64, 460)
        spacing: 14

        SymbolIcon {
            Layout.alignment: Qt.AlignHCenter
            symbol: "lock.fill"
            size: 44
            color: Theme.accentColor
        }

        Label {
            Layout.alignment: Qt.AlignHCenter
            text: qsTr("Activate Zentrik")
            font.pixelSize: 24
            font.bold: true
        }

        Label {
            objectName: "licenseMessage"
            Layout.fillWidth: true
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            text: setup.gate.message
            color: Theme.secondaryTextColor
        }

        TextField {
            id: keyField
            objectName: "licenseKeyField"
            Layout.fillWidth: true
            placeholderText: qsTr("License key")
            echoMode: TextInput.Password
            focus: true
            Accessible.name: placeholderText
            onAccepted: setup.gate.submitKey(text)
        }

        AccentButton {
            objectName: "activateButton"
            Layout.alignment: Qt.AlignHCenter
            text: qsTr("Activate")
            enabled: keyField.text.trim().length > 0
            Accessible.name: text
            onClicked: setup.gate.submitKey(keyField.text)
        }
    }
}
