pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// A chat screen's "New chat" and the list of its own recent conversations, folded away
// until asked for; picking one shows it to go on with it.
ColumnLayout {
    id: recent

    required property ChatToolViewModel chat
    property int shown: 8
    readonly property HistoryListModel conversations: chat.recentConversations

    spacing: 8
    // Nothing to start over from and nothing stored yet: no row at all.
    visible: newChat.visible || listToggle.visible || recent.chat.isLoadingConversation

    Component.onCompleted: recent.conversations.limit = recent.shown

    RowLayout {
        Layout.fillWidth: true
        spacing: 10

        PlainButton {
            id: newChat
            objectName: "newChatButton"
            symbol: "plus.bubble"
            text: qsTr("New Chat")
            visible: recent.chat.messages.count > 0 || recent.chat.conversationId.length > 0
            onClicked: {
                listToggle.checked = false
                recent.chat.newChat()
            }
        }
        PlainButton {
            id: listToggle
            objectName: "recentConversationsButton"
            visible: recent.conversations.count > 0
            checkable: true
            symbol: checked ? "chevron.up" : "chevron.down"
            text: qsTr("Recent Conversations")
        }
        BusyIndicator {
            running: recent.chat.isLoadingConversation
            visible: running
            implicitHeight: 32
            implicitWidth: 32
        }
        Item {
            Layout.fillWidth: true
        }
    }

    Repeater {
        model: listToggle.checked ? recent.conversations : null

        ItemDelegate {
            id: row

            required property string conversationId
            required property string title
            required property string preview
            required property string timeText
            readonly property bool isOpen: conversationId === recent.chat.conversationId

            objectName: "recentConversation:" + title
            Layout.fillWidth: true
            Layout.maximumWidth: 720
            Accessible.name: qsTr("%1, %2").arg(title).arg(timeText)
            onClicked: {
                listToggle.checked = false
                recent.chat.openConversation(row.conversationId)
            }
            Keys.onReturnPressed: clicked()
            Keys.onEnterPressed: clicked()

            background: Rectangle {
                radius: 8
                color: row.isOpen ? Theme.selectionColor : row.hovered ? Theme.hoverColor : Theme.cardColor
                border.width: row.visualFocus ? 2 : 1
                border.color: row.visualFocus ? Theme.focusColor : Theme.cardBorderColor
            }

            contentItem: RowLayout {
                spacing: 12
                ColumnLayout {
                    Layout.fillWidth: true
                    spacing: 0
                    Label {
                        Layout.fillWidth: true
                        text: row.title
                        font.bold: row.isOpen
                        elide: Text.ElideRight
                    }
                    Label {
                        Layout.fillWidth: true
                        visible: text.length > 0 && text !== row.title
                        text: row.preview
                        color: Theme.secondaryTextColor
                        font.pixelSize: 12
                        elide: Text.ElideRight
                    }
                }
                Label {
                    text: row.timeText
                    color: Theme.secondaryTextColor
                    font.pixelSize: 12
                }
            }
        }
    }
}
