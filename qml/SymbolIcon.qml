import QtQuick
import Zentrik

// A system symbol name drawn as its Material Icons glyph.
Text {
    id: icon

    property string symbol
    property real size: 20

    text: Theme.glyph(symbol)
    font.family: Theme.iconFontFamily
    font.pixelSize: size
    color: Theme.textColor
    horizontalAlignment: Text.AlignHCenter
    verticalAlignment: Text.AlignVCenter
    Accessible.ignored: true
}
