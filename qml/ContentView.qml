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
    minimumWidth: 800
    minimumHeight: 600
    visible: true

    // The program makes the navigation and hands it over when it loads this window.
    required property ContentViewModel navigation

    // The desktop adds " — Zentrik" (the application's display name) after the title itself.
    title: licenseGate.isLicenseVerified ? window.navigation.screenTitle : qsTr("Zentrik")
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

    // Popups that Qt Quick builds itself (the file dialogs, tool tips) paint their body
    // through a shader-made shadow, which the software renderer leaves out together with the
    // body. Each popup's parts are drawn plainly instead, with either renderer.
    Connections {
        target: stage.Overlay.overlay
        function onChildrenChanged() {
            const popupItems = stage.Overlay.overlay.children
            for (let i = 0; i < popupItems.length; ++i) {
                const parts = popupItems[i].children
                for (let j = 0; j < parts.length; ++j) {
                    if (parts[j].layer && parts[j].layer.enabled)
                        parts[j].layer.enabled = false
                }
            }
        }
    }

    Shortcut {
        sequences: ["Ctrl+,"]
        enabled: licenseGate.isLicenseVerified
        onActivated: window.navigation.showSettings()
    }

    LicenseStage {
        id: stage
        objectName: "stage"
        anchors.fill: parent
        focus: true
        navigation: window.navigation
        gate: licenseGate
    }
}
