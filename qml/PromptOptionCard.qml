import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// A dashboard shortcut: a symbol and the sentence that says where it leads.
AbstractButton {
    id: card

    property string symbol

    objectName: "promptOption:" + text
    implicitHeight: Math.max(96, implicitContentHeight + topPadding + bottomPadding)
    padding: 16
    hoverEnabled: true
    Accessible.name: text
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

    contentItem: ColumnLayout {
        spacing: 10

        SymbolIcon {
            Layout.alignment: Qt.AlignLeft
            symbol: card.symbol
            size: 24
            color: Theme.accentColor
        }

        Label {
            Layout.fillWidth: true
            text: card.text
            wrapMode: Text.Wrap
            font.pixelSize: 14
        }
    }
}
