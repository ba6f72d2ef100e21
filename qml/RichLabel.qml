import QtQuick
import QtQuick.Controls
import Zentrik

// Rich text of a reply: selectable, wrapping, with working links.
TextEdit {
    id: label

    readOnly: true
    selectByMouse: true
    textFormat: TextEdit.RichText
    wrapMode: TextEdit.Wrap
    color: Theme.textColor
    selectionColor: Theme.selectionColor
    selectedTextColor: Theme.textColor
    palette.link: Theme.linkColor
    font.pixelSize: 15
    Accessible.role: Accessible.StaticText
    Accessible.name: getText(0, length)
    onLinkActivated: link => Qt.openUrlExternally(link)

    HoverHandler {
        cursorShape: label.hoveredLink.length > 0 ? Qt.PointingHandCursor : Qt.IBeamCursor
    }
}
