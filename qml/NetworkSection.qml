import QtQuick
import QtQuick.Controls
import QtQuick.Dialogs
import QtQuick.Layouts
import Zentrik

// The proxy, an extra CA certificate and which provider transcribes voice notes; saved with
// the rest of Settings.
SettingsSection {
    id: section

    required property SettingsViewModel settings
    readonly property NetworkSettingsForm network: settings.network
    readonly property bool manual: network.proxyMode === "manual"
    readonly property var transcriptionChoices: settings.transcriptionProviders

    objectName: "networkSection"
    title: qsTr("Network")

    Label {
        text: qsTr("Proxy")
        font.bold: true
    }

    SelectBox {
        objectName: "proxyModePicker"
        Layout.fillWidth: true
        textRole: "label"
        valueRole: "value"
        model: [
            { value: "system", label: qsTr("The system's proxy settings") },
            { value: "none", label: qsTr("No proxy") },
            { value: "manual", label: qsTr("This proxy:") }
        ]
        currentIndex: section.network.proxyMode === "none" ? 1 : section.manual ? 2 : 0
        Accessible.name: qsTr("Proxy")
        onActivated: section.network.proxyMode = currentValue
    }

    RowLayout {
        Layout.fillWidth: true
        visible: section.manual
        spacing: 8

        SelectBox {
            objectName: "proxyTypePicker"
            textRole: "label"
            valueRole: "value"
            model: [{ value: "http", label: "HTTP" }, { value: "socks5", label: "SOCKS5" }]
            currentIndex: section.network.proxyType === "socks5" ? 1 : 0
            Accessible.name: qsTr("Proxy type")
            onActivated: section.network.proxyType = currentValue
        }
        TextField {
            objectName: "proxyHostField"
            Layout.fillWidth: true
            placeholderText: qsTr("Host, e.g. proxy.example")
            text: section.network.proxyHost
            selectByMouse: true
            Accessible.name: qsTr("Proxy host")
            onTextEdited: section.network.proxyHost = text
        }
        TextField {
            objectName: "proxyPortField"
            Layout.preferredWidth: 90
            placeholderText: qsTr("Port")
            text: section.network.proxyPort > 0 ? String(section.network.proxyPort) : ""
            validator: IntValidator { bottom: 0; top: 65535 }
            inputMethodHints: Qt.ImhDigitsOnly
            Accessible.name: qsTr("Proxy port")
            onTextEdited: section.network.proxyPort = text.length > 0 ? parseInt(text, 10) : 0
        }
    }

    RowLayout {
        Layout.fillWidth: true
        visible: section.manual
        spacing: 8

        TextField {
            objectName: "proxyUserField"
            Layout.fillWidth: true
            Layout.preferredWidth: 1
            placeholderText: qsTr("User (optional)")
            text: section.network.proxyUser
            selectByMouse: true
            Accessible.name: qsTr("Proxy user")
            onTextEdited: section.network.proxyUser = text
        }
        KeyField {
            objectName: "proxyPasswordField"
            Layout.preferredWidth: 1
            placeholderText: qsTr("Password (kept in the keyring)")
            key: section.network.proxyPassword
            onEdited: value => section.network.proxyPassword = value
        }
    }

    Label {
        Layout.topMargin: 6
        text: qsTr("Extra CA certificate")
        font.bold: true
    }

    RowLayout {
        Layout.fillWidth: true
        spacing: 8
        Label {
            objectName: "caFileLabel"
            Layout.fillWidth: true
            text: section.network.caFile.length > 0 ? section.network.caFile
                                                    : qsTr("None: only the system's certificate authorities are trusted.")
            color: section.network.caFile.length > 0 ? Theme.textColor : Theme.secondaryTextColor
            wrapMode: Text.WrapAtWordBoundaryOrAnywhere
        }
        PlainButton {
            objectName: "chooseCaFileButton"
            text: qsTr("Choose File…")
            onClicked: caDialog.open()
        }
        PlainButton {
            objectName: "clearCaFileButton"
            visible: section.network.caFile.length > 0
            text: qsTr("Clear")
            onClicked: section.network.caFile = ""
        }
    }

    Label {
        objectName: "networkProblem"
        Layout.fillWidth: true
        visible: text.length > 0
        text: section.network.problem
        color: Theme.warningColor
        wrapMode: Text.Wrap
    }

    Label {
        Layout.topMargin: 6
        text: qsTr("Voice notes are transcribed by")
        font.bold: true
    }

    SelectBox {
        objectName: "transcriptionProviderPicker"
        Layout.fillWidth: true
        textRole: "name"
        valueRole: "id"
        model: section.transcriptionChoices
        currentIndex: section.transcriptionChoices.findIndex(
                          entry => entry.id === section.settings.transcriptionProvider)
        Accessible.name: qsTr("Voice notes are transcribed by")
        onActivated: section.settings.transcriptionProvider = currentValue
    }

    FilePicker {
        id: caDialog
        objectName: "caFileDialog"
        title: qsTr("Choose a CA Certificate")
        nameFilters: [qsTr("Certificates (*.pem *.crt)"), qsTr("All files (*)")]
        fileMode: FileDialog.OpenFile
        onAccepted: file => section.network.caFile = file.toString()
    }
}
