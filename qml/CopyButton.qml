import QtQuick
import QtQuick.Controls
import QtQuick.Controls.Material
import QtQuick.Layouts
import Zentrik

// "Copy to Clipboard", then "Copied!" for a moment. Copies copyText through the Markdown
// clean-up unless cleanUp is false.
Button {
    id: button

    property alias copyText: copier.text
    property alias cleanUp: copier.cleanUp
    property alias copier: copier
    property bool compact: false

    flat: true
    background: QuietBackground {
        owner: button
    }
    Accessible.name: copier.label
    ToolTip.visible: compact && hovered
    ToolTip.text: copier.label
    onClicked: copier.copy()

    ClipboardCopier {
        id: copier
    }

    contentItem: RowLayout {
        spacing: 6
        SymbolIcon {
            symbol: copier.symbol
            size: 16
            color: button.Material.accentColor
        }
        Label {
            visible: !button.compact
            text: copier.label
            color: button.Material.accentColor
            font.pixelSize: 13
        }
    }
}
