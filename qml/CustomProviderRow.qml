import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// One custom provider in Settings: its name, address and models, with the actions on it. A
// model's id can be typed for a server that lists none.
Rectangle {
    id: row

    required property var provider // {name, baseUrl, hasKey, models: [{id, name}], modelCount}
    required property ProviderSettings settings
    readonly property bool busy: settings.busy

    signal removeRequested

    objectName: "customProvider:" + provider.name
    implicitHeight: column.implicitHeight + 24
    radius: 8
    color: "transparent"
    border.color: Theme.cardBorderColor

    ColumnLayout {
        id: column
        anchors.fill: parent
        anchors.margins: 12
        spacing: 8

        RowLayout {
            Layout.fillWidth: true
            spacing: 8

            ColumnLayout {
                Layout.fillWidth: true
                spacing: 2
                Label {
                    Layout.fillWidth: true
                    text: row.provider.name
                    font.bold: true
                    elide: Text.ElideRight
                }
                Label {
                    Layout.fillWidth: true
                    text: row.provider.hasKey ? qsTr("%1 · key in the keyring").arg(row.provider.baseUrl)
                                              : row.provider.baseUrl
                    color: Theme.secondaryTextColor
                    font.pixelSize: 12
                    wrapMode: Text.WrapAtWordBoundaryOrAnywhere
                }
            }

            PlainButton {
                objectName: row.objectName + ".refresh"
                symbol: "arrow.clockwise"
                text: qsTr("Refresh Models")
                enabled: !row.busy
                onClicked: row.settings.refreshModels(row.provider.name)
            }
            PlainButton {
                objectName: row.objectName + ".remove"
                symbol: "trash"
                text: qsTr("Remove")
                enabled: !row.busy
                onClicked: row.removeRequested()
            }
        }

        Label {
            objectName: row.objectName + ".models"
            Layout.fillWidth: true
            text: row.provider.modelCount > 0
                  ? row.provider.models.map(model => model.name).join(" · ")
                  : qsTr("No models listed. Type a model's id below to use one.")
            color: row.provider.modelCount > 0 ? Theme.textColor : Theme.secondaryTextColor
            wrapMode: Text.Wrap
        }

        RowLayout {
            Layout.fillWidth: true
            spacing: 8
            TextField {
                id: modelInput
                objectName: row.objectName + ".modelInput"
                Layout.fillWidth: true
                placeholderText: qsTr("Model id, e.g. llama3.2:latest")
                selectByMouse: true
                Accessible.name: qsTr("Model id for %1").arg(row.provider.name)
                onAccepted: addModelButton.add()
            }
            PlainButton {
                id: addModelButton
                objectName: row.objectName + ".addModel"
                text: qsTr("Add Model")
                enabled: !row.busy && modelInput.text.trim().length > 0
                function add() {
                    if (!enabled)
                        return
                    row.settings.addModel(row.provider.name, modelInput.text)
                    // What was typed stays when it was refused, to be corrected.
                    if (!row.settings.messageIsError)
                        modelInput.clear()
                }
                onClicked: add()
            }
        }
    }
}
