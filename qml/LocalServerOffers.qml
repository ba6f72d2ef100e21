pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// The dashboard's offer of the model servers found running on this computer, each added with
// one click, then a line saying how that went. Shows nothing while there is nothing to say.
ColumnLayout {
    id: offers

    required property ContentViewModel navigation
    readonly property LocalServerDetector detector: APIManager.localServers
    property string lastUsed
    property string outcome
    property bool failed: false
    property bool using: false

    objectName: "localServerOffers"
    visible: repeater.count > 0 || outcome.length > 0
    spacing: 8

    Repeater {
        id: repeater
        model: offers.detector.offers
        delegate: LocalServerOfferRow {
            required property var modelData
            Layout.fillWidth: true
            offer: modelData
            busy: offers.using
            onUseRequested: {
                offers.lastUsed = modelData.name
                offers.using = true
                offers.detector.use(modelData.baseUrl)
            }
        }
    }

    RowLayout {
        Layout.fillWidth: true
        visible: offers.outcome.length > 0
        spacing: 12
        Label {
            objectName: "localServerOutcome"
            Layout.fillWidth: true
            text: offers.outcome
            color: offers.failed ? Theme.warningColor : Theme.textColor
            wrapMode: Text.Wrap
        }
        PlainButton {
            objectName: "localServerSettingsButton"
            visible: !offers.failed
            text: qsTr("Choose a Model in Settings")
            onClicked: offers.navigation.showSettings()
        }
    }

    Connections {
        target: offers.detector
        function onUseFinished(error: string) {
            offers.using = false
            offers.failed = error.length > 0
            offers.outcome = offers.failed ? error : qsTr("%1 was added. Its models are in the model list.").arg(offers.lastUsed)
        }
    }
}
