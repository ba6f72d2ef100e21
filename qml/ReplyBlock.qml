import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// One block of a reply, drawn by its type. Each kind reads the block through its parent, this
// loader: Qt 6.4's Loader cannot make components bound to their file, so they cannot name the
// loader's id.
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
            text: (parent as ReplyBlock).text
        }
    }

    Component {
        id: heading
        RichLabel {
            text: (parent as ReplyBlock).text
            font.pixelSize: Math.max(15, 26 - 3 * (parent as ReplyBlock).level)
            font.bold: true
            Accessible.role: Accessible.Heading
        }
    }

    Component {
        id: list
        ListBlock {
            items: (parent as ReplyBlock).items
        }
    }

    Component {
        id: quote
        QuoteBlock {
            text: (parent as ReplyBlock).text
        }
    }

    Component {
        id: code
        CodeBlock {
            code: (parent as ReplyBlock).text
            language: (parent as ReplyBlock).language
        }
    }

    Component {
        id: table
        TableBlock {
            header: (parent as ReplyBlock).tableHeader
            rows: (parent as ReplyBlock).tableRows
            alignments: (parent as ReplyBlock).columnAlignments
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
