import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// One stored conversation in the History list: its tool's symbol, title, first line (or,
// for a search, the passage with the matching words in bold), time, and the row's actions.
// While renaming, the title is a field: Return keeps the new title, Escape the old one.
ItemDelegate {
    id: row

    required property int index
    required property string conversationId
    required property string tool
    required property string toolName
    required property string symbol
    required property string title
    required property string preview
    required property string snippet
    required property string timeText
    required property string assistant
    property bool keyboardCurrent: false
    property bool renaming: false

    signal opened
    signal renameRequested
    signal renamed(string title)
    signal renameCancelled
    signal exportRequested
    signal removeRequested

    objectName: "historyRow:" + title
    focusPolicy: Qt.NoFocus
    Accessible.role: Accessible.ListItem
    Accessible.name: qsTr("%1, %2, %3").arg(title).arg(toolName).arg(timeText)
    onClicked: if (!renaming) opened()

    background: Rectangle {
        radius: 10
        color: row.hovered ? Theme.hoverColor : Theme.cardColor
        border.width: row.keyboardCurrent ? 2 : 1
        border.color: row.keyboardCurrent ? Theme.focusColor : Theme.cardBorderColor
    }

    contentItem: RowLayout {
        spacing: 12

        SymbolIcon {
            Layout.alignment: Qt.AlignTop
            Layout.topMargin: 2
            symbol: row.symbol
            size: 22
            color: Theme.accentColor
        }

        ColumnLayout {
            Layout.fillWidth: true
            spacing: 2

            RowLayout {
                Layout.fillWidth: true
                spacing: 8
                Label {
                    objectName: "historyRowTitle"
                    Layout.fillWidth: true
                    visible: !row.renaming
                    text: row.title
                    font.bold: true
                    elide: Text.ElideRight
                }
                TextField {
                    objectName: "renameField"
                    Layout.fillWidth: true
                    visible: row.renaming
                    onVisibleChanged: {
                        if (visible) {
                            text = row.title
                            selectAll()
                            forceActiveFocus(Qt.OtherFocusReason)
                        }
                    }
                    Accessible.name: qsTr("New title")
                    selectByMouse: true
                    Keys.onReturnPressed: row.renamed(text)
                    Keys.onEnterPressed: row.renamed(text)
                    Keys.onEscapePressed: row.renameCancelled()
                    onActiveFocusChanged: if (!activeFocus && row.renaming) row.renameCancelled()
                }
                Label {
                    text: row.timeText
                    color: Theme.secondaryTextColor
                    font.pixelSize: 12
                }
            }

            Label {
                Layout.fillWidth: true
                text: row.toolName
                color: Theme.secondaryTextColor
                font.pixelSize: 12
                elide: Text.ElideRight
            }

            Label {
                objectName: "historyRowText"
                Layout.fillWidth: true
                // The title is usually made from the first line: not shown twice.
                visible: text.length > 0 && text !== row.title
                text: row.snippet.length > 0 ? row.snippet : row.preview
                textFormat: row.snippet.length > 0 ? Text.StyledText : Text.PlainText
                color: Theme.textColor
                maximumLineCount: 2
                wrapMode: Text.Wrap
                elide: Text.ElideRight
            }
        }

        RowLayout {
            Layout.alignment: Qt.AlignVCenter
            spacing: 2
            HistoryRowButton {
                objectName: "renameButton"
                symbol: "pencil"
                text: qsTr("Rename")
                onClicked: row.renameRequested()
            }
            HistoryRowButton {
                objectName: "exportButton"
                symbol: "square.and.arrow.up"
                text: qsTr("Export…")
                onClicked: row.exportRequested()
            }
            HistoryRowButton {
                objectName: "deleteButton"
                symbol: "trash"
                text: qsTr("Delete")
                onClicked: row.removeRequested()
            }
        }
    }
}
