import QtQuick
import Zentrik

// What the window shows: the check of the stored licence, the licence form when it is
// missing or refused, then the sidebar and the screens. Each view reaches what it needs
// through its parent, this loader: Qt 6.4's Loader cannot make components bound to their
// file, so they cannot name an id outside them.
Loader {
    required property ContentViewModel navigation
    required property LicenseGate gate

    sourceComponent: gate.isLicenseVerified ? mainView : gate.showLicenseSetup ? licenseSetup : licenseChecking

    Component {
        id: mainView
        MainView {
            navigation: (parent as LicenseStage).navigation
        }
    }

    Component {
        id: licenseChecking
        LicenseCheckingView {}
    }

    Component {
        id: licenseSetup
        LicenseSetupView {
            gate: (parent as LicenseStage).gate
        }
    }
}
