import QtQuick
import Zentrik

// A model's badge: an emoji in colour, or a short word such as "AI" in a pill.
Rectangle {
    id: badge

    property string badge
    readonly property bool isEmoji: badgeText.text.length > 0 && badgeText.text.codePointAt(0) > 0x2000

    implicitWidth: isEmoji ? badgeText.implicitWidth : badgeText.implicitWidth + 10
    implicitHeight: badgeText.implicitHeight + (isEmoji ? 0 : 2)
    radius: height / 2
    color: isEmoji ? "transparent" : Theme.selectionColor
    Accessible.ignored: true

    Text {
        id: badgeText
        anchors.centerIn: parent
        text: badge.badge
        font.family: badge.isEmoji ? Theme.emojiFontFamily : font.family
        font.pixelSize: badge.isEmoji ? 15 : 11
        font.bold: !badge.isEmoji
        color: Theme.textColor
    }
}
