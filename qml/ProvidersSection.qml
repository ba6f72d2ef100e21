pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// The custom OpenAI-compatible providers: the model servers found on this computer, the
// providers added so far, and a form to add one. Each action takes effect at once.
SettingsSection {
    id: section

    required property ProviderSettings providers
    readonly property LocalServerDetector detector: providers.localServers
    // Set while an add is under way, so that only its success empties the form.
    property bool adding: false
    // Set while a look the user asked for is under way, so that finding nothing is said.
    property bool looking: false
    property bool foundNothing: false

    objectName: "providersSection"
    title: qsTr("Providers")

    Label {
        Layout.fillWidth: true
        text: qsTr("Any server that speaks OpenAI's chat API: a model server on this computer (Ollama, LM Studio, llama.cpp) or a hosted one. Its models join the model lists under its name.")
        color: Theme.secondaryTextColor
        wrapMode: Text.Wrap
    }

    Repeater {
        model: section.detector ? section.detector.offers : []
        delegate: LocalServerOfferRow {
            required property var modelData
            Layout.fillWidth: true
            offer: modelData
            busy: section.providers.busy
            onUseRequested: section.providers.useLocalServer(modelData.baseUrl)
        }
    }

    Repeater {
        model: section.providers.providers
        delegate: CustomProviderRow {
            required property var modelData
            Layout.fillWidth: true
            provider: modelData
            settings: section.providers
            onRemoveRequested: removeDialog.ask(modelData.name)
        }
    }

    Label {
        Layout.topMargin: 6
        text: qsTr("Add a provider")
        font.bold: true
    }

    GridLayout {
        Layout.fillWidth: true
        columns: section.width > 620 ? 2 : 1
        columnSpacing: 8
        rowSpacing: 8

        TextField {
            id: nameInput
            objectName: "providerNameField"
            Layout.fillWidth: true
            placeholderText: qsTr("Name, e.g. Ollama")
            selectByMouse: true
            Accessible.name: qsTr("Provider name")
            onAccepted: addButton.add()
        }
        TextField {
            id: urlInput
            objectName: "providerUrlField"
            Layout.fillWidth: true
            placeholderText: qsTr("Address, e.g. http://localhost:11434/v1")
            selectByMouse: true
            inputMethodHints: Qt.ImhUrlCharactersOnly | Qt.ImhNoAutoUppercase
            Accessible.name: qsTr("Provider address")
            onAccepted: addButton.add()
        }
    }

    KeyField {
        id: keyInput
        objectName: "providerKeyField"
        placeholderText: qsTr("API key (optional; kept in the keyring)")
        onEdited: value => keyInput.key = value
    }

    RowLayout {
        Layout.fillWidth: true
        spacing: 12

        Item {
            Layout.fillWidth: true
        }

        PlainButton {
            objectName: "detectLocalServersButton"
            symbol: "laptopcomputer"
            text: section.detector && section.detector.detecting ? qsTr("Looking…") : qsTr("Look on This Computer")
            enabled: section.detector !== null && !section.detector.detecting
            onClicked: {
                section.looking = true
                section.foundNothing = false
                section.providers.detectLocalServers()
            }
        }

        AccentButton {
            id: addButton
            objectName: "addProviderButton"
            text: qsTr("Add Provider")
            enabled: !section.providers.busy && nameInput.text.trim().length > 0 && urlInput.text.trim().length > 0
            function add() {
                if (!enabled)
                    return
                section.adding = true
                section.providers.addProvider(nameInput.text, urlInput.text, keyInput.key)
            }
            onClicked: add()
        }
    }

    Label {
        objectName: "providerMessage"
        Layout.fillWidth: true
        visible: text.length > 0
        text: section.providers.busy ? qsTr("Working…") : section.providers.message
        color: section.providers.messageIsError && !section.providers.busy ? Theme.warningColor
                                                                           : Theme.secondaryTextColor
        wrapMode: Text.Wrap
    }

    Label {
        objectName: "noLocalServerFound"
        Layout.fillWidth: true
        visible: section.foundNothing
        text: qsTr("No new model server is running on this computer.")
        color: Theme.secondaryTextColor
        wrapMode: Text.Wrap
    }

    Connections {
        target: section.detector
        function onFinished() {
            if (!section.looking)
                return
            section.looking = false
            section.foundNothing = section.detector.offers.length === 0
        }
    }

    Connections {
        target: section.providers
        function onFinished(succeeded: bool) {
            if (!section.adding)
                return
            section.adding = false
            if (succeeded) {
                nameInput.clear()
                urlInput.clear()
                keyInput.key = ""
            }
        }
    }

    ProviderRemoveDialog {
        id: removeDialog
        onConfirmed: name => section.providers.removeProvider(name)
    }
}
