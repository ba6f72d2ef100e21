import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// A code block in a monospace font with its own copy button, which copies the code as it
// stands.
Rectangle {
    id: codeBlock

    property string code
    property string language

    implicitHeight: column.implicitHeight + 16
    radius: 8
    color: Theme.codeBackgroundColor
    border.color: Theme.cardBorderColor

    ColumnLayout {
        id: column
        anchors.fill: parent
        anchors.margins: 8
        spacing: 0

        RowLayout {
            Layout.fillWidth: true
            Label {
                Layout.leftMargin: 6
                Layout.fillWidth: true
                text: codeBlock.language
                color: Theme.secondaryTextColor
                font.pixelSize: 12
            }
            CopyButton {
                objectName: "codeCopyButton"
                copyText: codeBlock.code
                cleanUp: false
                compact: true
            }
        }

        ScrollView {
            Layout.fillWidth: true
            implicitHeight: codeText.implicitHeight + (ScrollBar.horizontal.visible ? 12 : 0)
            contentWidth: codeText.implicitWidth
            clip: true

            TextEdit {
                id: codeText
                objectName: "codeText"
                leftPadding: 6
                rightPadding: 6
                text: codeBlock.code
                readOnly: true
                selectByMouse: true
                textFormat: TextEdit.PlainText
                font.family: Theme.monospaceFontFamily
                font.pixelSize: 13
                color: Theme.textColor
                selectionColor: Theme.selectionColor
                Accessible.name: text
            }
        }
    }
}
