import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// A labelled, selectable block of text that scrolls when it is long.
ColumnLayout {
    id: block

    property string title
    property string text

    spacing: 4

    Label {
        text: block.title
        font.bold: true
    }

    Rectangle {
        Layout.fillWidth: true
        implicitHeight: Math.min(body.implicitHeight + 20, 180)
        radius: 8
        color: Theme.codeBackgroundColor
        border.color: Theme.cardBorderColor

        ScrollView {
            anchors.fill: parent
            anchors.margins: 10
            contentWidth: availableWidth
            clip: true

            TextEdit {
                id: body
                width: parent.width
                text: block.text
                readOnly: true
                selectByMouse: true
                wrapMode: TextEdit.Wrap
                color: Theme.textColor
                Accessible.name: block.title
            }
        }
    }
}
