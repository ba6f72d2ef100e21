import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// A model's reply drawn from its Markdown: paragraphs, headings, lists, quotes, tables
// and code blocks. Set text (it may grow while a reply streams in), or hand over a block
// model of one's own in blocks.
ColumnLayout {
    id: reply

    property string text
    property MarkdownModel blocks: document.blocks
    property bool showAssistantSymbol: false
    readonly property alias showsRule: document.showsRule

    objectName: "replyView"
    spacing: 10

    ReplyDocument {
        id: document
        source: reply.text
    }

    RowLayout {
        Layout.fillWidth: true
        spacing: 12

        SymbolIcon {
            Layout.alignment: Qt.AlignTop
            visible: reply.showAssistantSymbol
            symbol: "brain.head.profile"
            size: 24
            color: Theme.accentColor
        }

        ColumnLayout {
            objectName: "replyBlocks"
            Layout.fillWidth: true
            spacing: 10

            Repeater {
                model: reply.blocks
                delegate: ReplyBlock {
                    Layout.fillWidth: true
                }
            }
        }
    }

    Rectangle {
        objectName: "replyRule"
        Layout.fillWidth: true
        visible: reply.showsRule
        implicitHeight: 1
        color: Theme.cardBorderColor
    }
}
