pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// The document's summary: a title, a brief summary and the key points, or the model's
// reply as Markdown when it did not come as the card's fields.
Rectangle {
    id: card

    required property PdfChatViewModel chat

    objectName: "pdfSummaryCard"
    implicitHeight: column.implicitHeight + 32
    radius: 12
    color: Theme.cardColor
    border.color: Theme.cardBorderColor

    ColumnLayout {
        id: column
        anchors.fill: parent
        anchors.margins: 16
        spacing: 8

        Label {
            Layout.fillWidth: true
            visible: card.chat.summaryTitle.length > 0
            text: card.chat.summaryTitle
            font.pixelSize: 18
            font.bold: true
            wrapMode: Text.Wrap
        }
        Label {
            Layout.fillWidth: true
            visible: card.chat.summaryText.length > 0
            text: card.chat.summaryText
            wrapMode: Text.Wrap
        }
        Repeater {
            model: card.chat.keyPoints
            RowLayout {
                id: keyPoint
                required property string modelData
                Layout.fillWidth: true
                SymbolIcon {
                    Layout.alignment: Qt.AlignTop
                    symbol: "checkmark"
                    size: 16
                    color: Theme.accentColor
                }
                Label {
                    Layout.fillWidth: true
                    text: keyPoint.modelData
                    wrapMode: Text.Wrap
                }
            }
        }
        ReplyView {
            Layout.fillWidth: true
            visible: card.chat.summaryMarkdown.length > 0
            text: card.chat.summaryMarkdown
        }
    }
}
