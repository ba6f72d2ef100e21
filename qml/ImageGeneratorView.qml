import QtQuick
import QtQuick.Controls
import QtQuick.Dialogs
import QtQuick.Layouts
import Zentrik

// The image studio: a prompt, a size, Generate, the picture with Save, and examples to start
// from. Everything it shows comes from its ImageGeneratorViewModel.
ScrollingPage {
    id: page

    // The example whose text the copier holds, marked while it says so.
    property int copiedExample: -1
    property ContentViewModel navigation

    signal openSettingsRequested

    // A run opened from the History screen.
    Component.onCompleted: {
        const run = page.navigation ? page.navigation.takeConversation("imageStudio") : ""
        if (run.length > 0)
            studio.openRun(run)
    }

    objectName: "imageGeneratorView"
    maxContentWidth: 900

    ImageGeneratorViewModel {
        id: studio
        objectName: "imageGeneratorViewModel"
        apiManager: APIManager
        history: HistoryService
        onCopyRequested: text => {
            copier.text = text;
            copier.copy();
        }
    }

    ClipboardCopier {
        id: copier
        cleanUp: false
        onIsCopiedChanged: if (!copier.isCopied) page.copiedExample = -1
    }

    ScreenHeading {
        Layout.fillWidth: true
        title: qsTr("Image Creation Studio")
        symbol: "photo"
        subtitle: qsTr("Describe a picture and let the selected image model draw it.")
    }

    Label {
        text: qsTr("Enter your prompt:")
        font.bold: true
    }

    ScrollView {
        id: promptScroller
        Layout.fillWidth: true
        Layout.preferredHeight: 110
        // Only a field with more text than it shows takes the mouse wheel; otherwise the
        // wheel scrolls the page around it.
        Binding {
            target: promptScroller.contentItem
            property: "interactive"
            value: promptScroller.contentHeight > promptScroller.availableHeight + 1
        }

        TextArea {
            id: promptField
            objectName: "promptField"
            text: studio.prompt
            placeholderText: qsTr("A watercolour of a lighthouse on a cliff at dawn")
            wrapMode: TextEdit.Wrap
            Accessible.name: qsTr("Prompt")
            onTextChanged: if (text !== studio.prompt) studio.prompt = text
        }
    }

    ImageSizePicker {
        Layout.fillWidth: true
        labels: studio.sizeLabels
        selectedIndex: studio.selectedSize
        onPicked: index => studio.selectedSize = index
    }

    RowLayout {
        spacing: 12

        AccentButton {
            objectName: "generateButton"
            text: studio.isGenerating ? qsTr("Generating…") : qsTr("Generate Image")
            enabled: studio.canGenerate
            onClicked: studio.generate()
        }
        BusyIndicator {
            Layout.preferredWidth: 32
            Layout.preferredHeight: 32
            visible: studio.isGenerating
            running: visible
        }
        Button {
            objectName: "cancelGenerationButton"
            visible: studio.isGenerating
            text: qsTr("Cancel")
            Accessible.name: qsTr("Cancel the image generation")
            onClicked: studio.cancel()
        }
        Label {
            objectName: "progressLabel"
            Layout.fillWidth: true
            text: studio.progressText
            color: Theme.secondaryTextColor
            elide: Text.ElideRight
        }
    }

    Label {
        objectName: "imageModelName"
        Layout.fillWidth: true
        text: qsTr("Model: %1").arg(studio.modelName)
        color: Theme.secondaryTextColor
        elide: Text.ElideRight
    }

    NoticeBanner {
        objectName: "imageError"
        Layout.fillWidth: true
        visible: studio.errorMessage.length > 0
        text: studio.errorMessage
    }

    Button {
        objectName: "openSettingsButton"
        visible: studio.errorOpensSettings
        text: qsTr("Open Settings")
        onClicked: page.openSettingsRequested()
    }

    ImageGeneratorPreview {
        Layout.fillWidth: true
        source: studio.imageUrl
        pictureSize: studio.imageSize
        busy: studio.isGenerating
        onSaveRequested: saveDialog.open()
    }

    ImageExampleList {
        Layout.fillWidth: true
        examples: studio.examplePrompts
        expanded: studio.showExamples
        copiedIndex: copier.isCopied ? page.copiedExample : -1
        onToggled: studio.toggleExamples()
        onCopyRequested: index => {
            page.copiedExample = index;
            studio.copyExample(index);
        }
    }

    FilePicker {
        id: saveDialog
        objectName: "saveDialog"
        title: qsTr("Save Image")
        fileMode: FileDialog.SaveFile
        acceptLabel: qsTr("Save")
        defaultSuffix: "png"
        nameFilters: [qsTr("PNG images (*.png)")]
        selectedFile: studio.suggestedFileUrl
        onAccepted: file => studio.save(file)
    }
}
