import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// Why and how to use one's own API keys; folded away until asked for.
ColumnLayout {
    id: section

    required property SettingsViewModel settings

    spacing: 10

    ItemDelegate {
        id: howItWorksToggleButton
        background: QuietBackground { owner: howItWorksToggleButton }
        objectName: "howItWorksToggle"
        Layout.fillWidth: true
        Accessible.name: qsTr("How It Works")
        Accessible.role: Accessible.Button
        onClicked: section.settings.toggleHowItWorks()
        contentItem: RowLayout {
            spacing: 10
            SymbolIcon {
                symbol: "info.circle.fill"
                color: Theme.accentColor
            }
            Label {
                Layout.fillWidth: true
                text: qsTr("How It Works")
                font.pixelSize: 15
                font.bold: true
            }
            SymbolIcon {
                objectName: "howItWorksChevron"
                symbol: section.settings.howItWorksSymbol
                color: Theme.secondaryTextColor
            }
        }
    }

    ColumnLayout {
        objectName: "howItWorksBody"
        Layout.fillWidth: true
        Layout.leftMargin: 16
        visible: section.settings.showHowItWorks
        spacing: 8

        Label {
            text: qsTr("Using your own API keys provides several benefits:")
            font.bold: true
        }

        Repeater {
            model: [
                { title: qsTr("Full Control"), text: qsTr("You have complete control over your AI interactions and data.") },
                { title: qsTr("Privacy"), text: qsTr("Your conversations and generated content remain private to you.") },
                { title: qsTr("Customization"), text: qsTr("Ability to fine-tune models and use custom datasets (where supported).") },
                { title: qsTr("Cost Management"), text: qsTr("Direct oversight of usage and associated costs.") }
            ]
            delegate: HowItWorksPoint {
                required property var modelData
                Layout.fillWidth: true
                title: modelData.title
                text: modelData.text
            }
        }

        Label {
            Layout.topMargin: 8
            text: qsTr("How to obtain API keys:")
            font.bold: true
        }

        Repeater {
            model: [
                { title: qsTr("OpenAI API Key"), text: qsTr("Required for GPT models and DALL-E"), link: "https://platform.openai.com/api-keys" },
                { title: qsTr("Fal AI API Key"), text: qsTr("Needed for FLUX and other image models"), link: "https://fal.ai/dashboard/keys" },
                { title: qsTr("Claude API Key"), text: qsTr("Used for Claude models"), link: "https://console.anthropic.com/settings/keys" }
            ]
            delegate: HowItWorksPoint {
                required property var modelData
                Layout.fillWidth: true
                title: modelData.title
                text: modelData.text
                link: modelData.link
            }
        }

        Label {
            Layout.fillWidth: true
            Layout.topMargin: 8
            text: qsTr("Your API keys are securely stored on your device using the system's keychain and are never shared with any third parties.")
            color: Theme.secondaryTextColor
            wrapMode: Text.Wrap
        }
    }
}
