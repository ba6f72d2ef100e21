import QtQuick
import QtQuick.Layouts
import Zentrik

// A quoted passage with a bar at its side.
RowLayout {
    id: quote

    property string text

    spacing: 12

    Rectangle {
        Layout.fillHeight: true
        implicitWidth: 3
        radius: 1.5
        color: Theme.cardBorderColor
    }

    RichLabel {
        Layout.fillWidth: true
        text: quote.text
        color: Theme.secondaryTextColor
        font.italic: true
    }
}
