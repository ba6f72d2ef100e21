import QtQuick
import QtQuick.Controls
import Zentrik

// One assistant: its symbol on its colour, its title and what it does.
AbstractButton {
    id: card

    property string title
    property string description
    property string symbol
    property color tint: Theme.accentColor

    objectName: "agentCard:" + title
    implicitHeight: 120
    hoverEnabled: true
    Accessible.name: title
    Accessible.description: description
    Accessible.role: Accessible.Button
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

    background: Rectangle {
        radius: 12
        color: card.hovered ? Qt.tint(Theme.cardColor, Theme.hoverColor) : Theme.cardColor
        border.color: Theme.cardBorderColor

        FocusRing {
            owner: card
        }
    }

    contentItem: Item {
        Rectangle {
            x: 14
            y: 14
            width: 40
            height: 40
            radius: 10
            color: Qt.rgba(card.tint.r, card.tint.g, card.tint.b, 0.18)
            SymbolIcon {
                anchors.centerIn: parent
                symbol: card.symbol
                size: 22
                color: card.tint
            }
        }

        // Plain positioning: a title that wraps pushes the description down, and the
        // description is cut with an ellipsis where the card ends.
        Column {
            x: 14 + 40 + 12 // beside the badge
            y: 14
            width: parent.width - x - 14
            height: parent.height - 28
            spacing: 4

            Label {
                objectName: "agentCardTitle"
                width: parent.width
                text: card.title
                font.pixelSize: 15
                font.bold: true
                wrapMode: Text.Wrap
                maximumLineCount: 2
            }

            Label {
                objectName: "agentCardDescription"
                width: parent.width
                height: Math.max(0, parent.height - y)
                text: card.description
                color: Theme.secondaryTextColor
                font.pixelSize: 13
                wrapMode: Text.Wrap
                elide: Text.ElideRight
                verticalAlignment: Text.AlignTop
            }
        }
    }
}
