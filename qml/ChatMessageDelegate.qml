pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// One message of a conversation: the user's text as typed, or the reply drawn from its
// Markdown (a divider for a reply that is only a rule), with a copy button. A message
// still streaming has no block model of its own and is drawn from its text. A reply the user
// stopped carries a mark saying so under it.
Rectangle {
    id: bubble

    required property string role
    required property string content
    required property string symbol
    required property var blocks
    required property bool isRule
    required property bool isStopped
    property list<int> citedPages: []

    signal pageLinkActivated(int page)

    implicitHeight: column.implicitHeight + 24
    radius: 10
    color: role === "user" ? Theme.selectionColor : Theme.cardColor
    border.color: Theme.cardBorderColor

    ColumnLayout {
        id: column
        anchors.fill: parent
        anchors.margins: 12
        spacing: 8

        RowLayout {
            Layout.fillWidth: true
            spacing: 10
            SymbolIcon {
                Layout.alignment: Qt.AlignTop
                symbol: bubble.symbol
                size: 22
                color: bubble.role === "user" ? Theme.secondaryTextColor : Theme.accentColor
            }
            Label {
                Layout.fillWidth: true
                visible: bubble.role === "user"
                text: bubble.content
                wrapMode: Text.Wrap
                textFormat: Text.PlainText
            }
            Rectangle {
                Layout.fillWidth: true
                visible: bubble.role !== "user" && bubble.isRule
                height: 1
                color: Theme.cardBorderColor
            }
            ReplyDocument {
                id: liveDocument
                source: bubble.blocks ? "" : bubble.content
            }
            ReplyView {
                Layout.fillWidth: true
                visible: bubble.role !== "user" && !bubble.isRule
                blocks: bubble.blocks ? bubble.blocks : liveDocument.blocks
            }
            CopyButton {
                Layout.alignment: Qt.AlignTop
                compact: true
                copyText: bubble.content
                cleanUp: bubble.role !== "user"
            }
        }

        Label {
            objectName: "stoppedMark"
            Layout.leftMargin: 32
            visible: bubble.isStopped
            text: qsTr("Stopped before the reply was complete")
            font.italic: true
            color: Theme.secondaryTextColor
        }

        Flow {
            Layout.fillWidth: true
            visible: bubble.citedPages.length > 0
            spacing: 6
            Repeater {
                model: bubble.citedPages
                PlainButton {
                    required property int modelData
                    radius: height / 2
                    text: qsTr("Page %1").arg(modelData)
                    Accessible.name: qsTr("Go to page %1").arg(modelData)
                    onClicked: bubble.pageLinkActivated(modelData)
                }
            }
        }
    }
}
