import QtQuick
import QtQuick.Controls
import QtQuick.Controls.Material
import Zentrik

// The main window: the licence gate first, then the sidebar beside the selected screen.
ApplicationWindow {
    id: window

    objectName: "contentView"
    width: 1280
    height: 800
    minimumWidth: 960
    minimumHeight: 640
    visible: true
    title: licenseGate.isLicenseVerified ? qsTr("Zentrik — %1").arg(contentModel.screenTitle) : qsTr("Zentrik")
    color: Theme.windowColor
    // Buttons read as written ("Save", "Send Redacted"), not in capitals.
    font.capitalization: Font.MixedCase

    Material.theme: Theme.isDarkMode ? Material.Dark : Material.Light
    Material.accent: Theme.accentColor
    Material.background: Theme.windowColor
    Material.foreground: Theme.textColor

    LicenseGate {
        id: licenseGate
        objectName: "licenseGate"
        apiManager: APIManager
    }

    ContentViewModel {
        id: contentModel
        objectName: "navigation"
    }

    Shortcut {
        sequences: ["Ctrl+,"]
        enabled: licenseGate.isLicenseVerified
        onActivated: contentModel.showSettings()
    }

    Loader {
        id: stage
        objectName: "stage"
        anchors.fill: parent
        focus: true
        sourceComponent: licenseGate.isLicenseVerified ? mainView
                         : licenseGate.showLicenseSetup ? licenseSetup : licenseChecking
    }

    Component {
        id: mainView
        MainView {
            navigation: contentModel
        }
    }

    Component {
        id: licenseChecking
        LicenseCheckingView {}
    }

    Component {
        id: licenseSetup
        LicenseSetupView {
            gate: licenseGate
        }
    }
}
