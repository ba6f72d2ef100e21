import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// One example prompt: its title, its text, and a copy button that shows when it was copied.
Rectangle {
    id: card

    property string title
    property string text
    property bool copied: false

    signal copyClicked()

    implicitHeight: column.implicitHeight + 24
    radius: 10
    color: Theme.cardColor
    border.color: card.copied ? Theme.accentColor : Theme.cardBorderColor

    ColumnLayout {
        id: column
        anchors.fill: parent
        anchors.margins: 12
        spacing: 6

        RowLayout {
            Layout.fillWidth: true
            Label {
                Layout.fillWidth: true
                text: card.title
                font.bold: true
            }
            Button {
                id: copyExampleButton
                background: QuietBackground { owner: copyExampleButton }
                objectName: "copyExample_" + card.title
                flat: true
                Accessible.name: card.copied ? qsTr("Copied") : qsTr("Use this prompt")
                ToolTip.visible: hovered
                ToolTip.text: qsTr("Copy into the prompt")
                onClicked: card.copyClicked()
                contentItem: SymbolIcon {
                    symbol: card.copied ? "checkmark" : "doc.on.doc"
                    size: 18
                    color: Theme.accentColor
                }
            }
        }
        Label {
            Layout.fillWidth: true
            text: card.text
            wrapMode: Text.Wrap
            color: Theme.secondaryTextColor
        }
    }
}
