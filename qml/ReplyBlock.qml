import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// One block of a reply, drawn by its type.
Loader {
    id: block

    required property string type
    required property string text
    required property int level
    required property string language
    required property var items
    required property var tableHeader
    required property var tableRows
    required property var columnAlignments

    objectName: "replyBlock:" + type
    sourceComponent: {
        switch (type) {
        case "heading": return heading
        case "bulletList":
        case "orderedList": return list
        case "quote": return quote
        case "code": return code
        case "table": return table
        case "rule": return rule
        default: return paragraph
        }
    }

    Component {
        id: paragraph
        RichLabel {
            text: block.text
        }
    }

    Component {
        id: heading
        RichLabel {
            text: block.text
            font.pixelSize: Math.max(15, 26 - 3 * block.level)
            font.bold: true
            Accessible.role: Accessible.Heading
        }
    }

    Component {
        id: list
        ListBlock {
            items: block.items
        }
    }

    Component {
        id: quote
        QuoteBlock {
            text: block.text
        }
    }

    Component {
        id: code
        CodeBlock {
            code: block.text
            language: block.language
        }
    }

    Component {
        id: table
        TableBlock {
            header: block.tableHeader
            rows: block.tableRows
            alignments: block.columnAlignments
        }
    }

    Component {
        id: rule
        Rectangle {
            implicitHeight: 1
            color: Theme.cardBorderColor
            Accessible.role: Accessible.Separator
        }
    }
}
