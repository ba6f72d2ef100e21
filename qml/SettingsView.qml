import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// API keys, model choices, custom providers and the network. Nothing is written until Save,
// except the providers, which change at once.
ScrollingPage {
    id: page

    objectName: "settingsView"
    maxContentWidth: 760

    SettingsViewModel {
        id: settingsModel
        objectName: "settingsViewModel"
        apiManager: APIManager
    }

    ScreenHeading {
        Layout.fillWidth: true
        title: qsTr("Settings")
    }

    NoticeBanner {
        objectName: "noSecretServiceWarning"
        Layout.fillWidth: true
        visible: !settingsModel.secretStoreAvailable
        symbol: "exclamationmark.triangle.fill"
        text: qsTr("No secret service is available, so API keys can be neither saved nor read. Start GNOME Keyring or KWallet and open Settings again.")
    }

    NoticeBanner {
        objectName: "keyStoreProblem"
        Layout.fillWidth: true
        visible: settingsModel.secretStoreAvailable && settingsModel.keyStoreProblem.length > 0
        symbol: "exclamationmark.triangle.fill"
        text: settingsModel.keyStoreProblem
    }

    SettingsSection {
        title: qsTr("Text Model")
        ModelPicker {
            objectName: "textModelPicker"
            Layout.fillWidth: true
            accessibleName: qsTr("Text Model")
            models: settingsModel.textModels
            selectedId: settingsModel.selectedTextModel
            onPicked: id => settingsModel.selectedTextModel = id
        }
    }

    SettingsSection {
        title: qsTr("Image Model")
        ModelPicker {
            objectName: "imageModelPicker"
            Layout.fillWidth: true
            accessibleName: qsTr("Image Model")
            models: settingsModel.imageModels
            selectedId: settingsModel.selectedImageModel
            onPicked: id => settingsModel.selectedImageModel = id
        }
    }

    SettingsSection {
        title: qsTr("API Keys")
        KeyField {
            objectName: "openAIKeyField"
            placeholderText: qsTr("Enter OpenAI API Key")
            key: settingsModel.openAIKey
            onEdited: value => settingsModel.openAIKey = value
        }
        KeyField {
            objectName: "falAIKeyField"
            placeholderText: qsTr("Enter Fal AI API Key")
            key: settingsModel.falAIKey
            onEdited: value => settingsModel.falAIKey = value
        }
        KeyField {
            objectName: "claudeKeyField"
            placeholderText: qsTr("Enter Claude API Key")
            key: settingsModel.claudeKey
            onEdited: value => settingsModel.claudeKey = value
        }
        Label {
            Layout.fillWidth: true
            text: qsTr("🆓 Free models do not require an API key.")
            color: Theme.secondaryTextColor
            wrapMode: Text.Wrap
        }
    }

    // Takes effect at once, without Save.
    HistorySettingsSection {}

    ProvidersSection {
        providers: settingsModel.providers
    }

    NetworkSection {
        settings: settingsModel
    }

    HowItWorksSection {
        Layout.fillWidth: true
        settings: settingsModel
    }

    AccentButton {
        objectName: "saveButton"
        Layout.alignment: Qt.AlignRight
        text: qsTr("Save")
        Accessible.name: text
        enabled: !settingsModel.isSaving
        onClicked: settingsModel.save()
    }

    SaveNotice {
        settings: settingsModel
    }
}
