import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// One note in the list: title, date and transcription, with copy, edit and delete.
Rectangle {
    id: card

    required property string noteId
    required property string title
    required property string transcription
    required property string dateText
    property bool copied: false

    signal copyRequested
    signal editRequested
    signal deleteRequested

    implicitHeight: column.implicitHeight + 24
    radius: 10
    color: Theme.cardColor
    border.color: Theme.cardBorderColor

    ColumnLayout {
        id: column
        anchors.fill: parent
        anchors.margins: 12
        spacing: 6

        RowLayout {
            Layout.fillWidth: true
            spacing: 4
            Label {
                Layout.fillWidth: true
                text: card.title
                font.bold: true
                font.pixelSize: 16
                elide: Text.ElideRight
                textFormat: Text.PlainText
            }
            ToolButton {
                id: copyButton
                background: QuietBackground { owner: copyButton }
                objectName: "copyNoteButton"
                Accessible.name: card.copied ? qsTr("Copied!") : qsTr("Copy transcription")
                ToolTip.visible: hovered || card.copied
                ToolTip.text: Accessible.name
                onClicked: card.copyRequested()
                contentItem: SymbolIcon {
                    symbol: card.copied ? "checkmark" : "doc.on.doc"
                    size: 18
                }
            }
            ToolButton {
                id: editButton
                background: QuietBackground { owner: editButton }
                objectName: "editNoteButton"
                Accessible.name: qsTr("Edit")
                ToolTip.visible: hovered
                ToolTip.text: Accessible.name
                onClicked: card.editRequested()
                contentItem: SymbolIcon {
                    symbol: "pencil"
                    size: 18
                }
            }
            ToolButton {
                id: deleteButton
                background: QuietBackground { owner: deleteButton }
                objectName: "deleteNoteButton"
                Accessible.name: qsTr("Delete")
                ToolTip.visible: hovered
                ToolTip.text: Accessible.name
                onClicked: card.deleteRequested()
                contentItem: SymbolIcon {
                    symbol: "trash"
                    size: 18
                    color: Theme.warningColor
                }
            }
        }

        Label {
            text: card.dateText
            color: Theme.secondaryTextColor
            font.pixelSize: 12
        }

        Label {
            Layout.fillWidth: true
            text: card.transcription.length > 0 ? card.transcription : qsTr("(nothing was heard)")
            color: card.transcription.length > 0 ? Theme.textColor : Theme.secondaryTextColor
            wrapMode: Text.Wrap
            textFormat: Text.PlainText
        }
    }
}
