import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// One titled point of the how-it-works section, with a link to the provider when given.
ColumnLayout {
    id: point

    property string title
    property string text
    property string link

    spacing: 2

    Label {
        Layout.fillWidth: true
        text: point.link.length > 0 ? "<a href=\"%1\">%2</a>".arg(point.link).arg(point.title) : point.title
        textFormat: point.link.length > 0 ? Text.StyledText : Text.PlainText
        font.weight: Font.DemiBold
        linkColor: Theme.accentColor
        wrapMode: Text.Wrap
        Accessible.name: point.title
        onLinkActivated: link => Qt.openUrlExternally(link)

        HoverHandler {
            enabled: point.link.length > 0
            cursorShape: Qt.PointingHandCursor
        }
    }

    Label {
        Layout.fillWidth: true
        text: point.text
        color: Theme.secondaryTextColor
        wrapMode: Text.Wrap
    }
}
