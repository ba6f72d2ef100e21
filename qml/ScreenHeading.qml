import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// A screen's title with its symbol, and an optional line under it.
ColumnLayout {
    id: heading

    property string title
    property string symbol
    property string subtitle
    property color tint: Theme.accentColor

    spacing: 6

    RowLayout {
        spacing: 12
        // Beside the first line of the title: a title laid out while the screen was still
        // narrow can keep a wrapped height for a moment, and a centred symbol would drift.
        SymbolIcon {
            Layout.alignment: Qt.AlignTop
            Layout.topMargin: 1
            visible: heading.symbol.length > 0
            symbol: heading.symbol
            size: 30
            color: heading.tint
        }
        Label {
            objectName: "screenHeadingTitle"
            Layout.fillWidth: true
            text: heading.title
            font.pixelSize: 28
            font.bold: true
            wrapMode: Text.Wrap
            Accessible.role: Accessible.Heading
        }
    }

    Label {
        Layout.fillWidth: true
        visible: heading.subtitle.length > 0
        text: heading.subtitle
        color: Theme.secondaryTextColor
        font.pixelSize: 15
        wrapMode: Text.Wrap
    }
}
