pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// A form-driven generator: pick an assistant, fill its form, Generate, watch the reply
// stream in, copy it. Ctrl+Enter generates, Escape stops.
ScrollingPage {
    id: page

    required property ContentViewModel navigation
    property string family: "marketing"

    objectName: "generatorView"
    followsGrowth: generator.isStreaming

    GeneratorViewModel {
        id: generator
        objectName: "generatorViewModel"
        apiManager: APIManager
        family: page.family
        initialCategory: page.navigation.screenArgument
        history: HistoryService
    }

    // A run opened from the History screen.
    Component.onCompleted: {
        const run = page.navigation.takeConversation("generator")
        if (run.length > 0)
            generator.openRun(run)
    }

    Shortcut {
        sequences: ["Ctrl+Return", "Ctrl+Enter"]
        onActivated: generator.generate()
    }
    Shortcut {
        sequence: "Escape"
        enabled: generator.isGenerating
        onActivated: generator.stop()
    }

    ScreenHeading {
        Layout.fillWidth: true
        title: generator.familyName
        symbol: generator.assistantIcon.length > 0 ? generator.assistantIcon : "pencil"
        tint: generator.assistantColor.length > 0 ? Theme.color(generator.assistantColor) : Theme.accentColor
        subtitle: generator.assistantDescription
    }

    SelectBox {
        objectName: "assistantPicker"
        Layout.fillWidth: true
        Layout.maximumWidth: 520
        model: generator.assistantTitles
        currentIndex: Array.from(generator.assistantTitles).indexOf(generator.category)
        displayText: currentIndex < 0 ? generator.pickerPrompt : currentText
        Accessible.name: generator.pickerPrompt
        onActivated: generator.selectAssistant(currentText)
    }

    Repeater {
        model: generator.fields
        FormFieldInput {
            required property var modelData
            Layout.fillWidth: true
            fieldData: modelData
            value: generator.inputs[modelData.label] ?? ""
            onEdited: text => generator.setInput(modelData.label, text)
        }
    }

    RowLayout {
        spacing: 12
        AccentButton {
            objectName: "generateButton"
            text: generator.isGenerating ? qsTr("Generating...") : qsTr("Generate")
            enabled: generator.canGenerate
            Accessible.name: qsTr("Generate")
            onClicked: generator.generate()
        }
        BusyIndicator {
            running: generator.isGenerating
            visible: running
            Layout.preferredHeight: 32
        }
        PlainButton {
            objectName: "stopButton"
            symbol: "stop.fill"
            visible: generator.isGenerating
            text: qsTr("Stop")
            Accessible.name: qsTr("Stop generating")
            onClicked: generator.stop()
        }
    }

    ErrorNotice {
        Layout.fillWidth: true
        labelName: "generatorError"
        text: generator.errorMessage
        opensSettings: generator.errorOpensSettings
        onOpenSettingsRequested: page.navigation.showSettings()
    }

    RowLayout {
        Layout.fillWidth: true
        visible: generator.output.length > 0
        Label {
            Layout.fillWidth: true
            text: qsTr("Generated Content:")
            font.pixelSize: 18
            font.bold: true
        }
        CopyButton {
            objectName: "copyOutputButton"
            copyText: generator.output
        }
    }

    ReplyView {
        objectName: "generatedContent"
        Layout.fillWidth: true
        visible: generator.output.length > 0
        blocks: generator.outputBlocks
    }

    Label {
        objectName: "stoppedMark"
        visible: generator.wasStopped
        text: qsTr("Stopped before the reply was complete")
        font.italic: true
        color: Theme.secondaryTextColor
    }

    PiiAlertView {
        alert: generator.piiAlertVM
        onSendOriginal: generator.sendOriginal()
        onSendRedacted: generator.sendRedacted()
    }
}
