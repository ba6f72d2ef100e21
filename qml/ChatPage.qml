import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// A conversation screen: the conversation scrolls above an input pinned to the bottom. The
// view follows what arrives (a new message, a reply growing as it streams) while the user is
// at the end; once they scroll up it stays where they put it and offers a button back to the
// latest message.
Item {
    id: page

    default property alias content: column.data
    property alias footer: footerColumn.data
    property int maxContentWidth: 1120
    property int margin: 32
    // Whether the end of the conversation is kept in view.
    property bool following: true
    readonly property alias conversation: flick

    function jumpToLatest() {
        following = true
        flick.showEnd()
    }

    Flickable {
        id: flick

        // Set while the view moves itself, so that only the user's scrolling stops following.
        property bool movingToEnd: false

        // Worked out on each call: inside a change handler a binding on the sizes may not
        // have caught up yet.
        function endY() {
            return Math.max(0, contentHeight - height)
        }

        function showEnd() {
            movingToEnd = true
            contentY = endY()
            movingToEnd = false
        }

        objectName: "conversationView"
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.bottom: footerBar.top
        contentWidth: width
        contentHeight: column.implicitHeight + 2 * page.margin
        clip: true
        boundsBehavior: Flickable.StopAtBounds
        ScrollBar.vertical: ScrollBar {}

        onContentHeightChanged: if (page.following) showEnd()
        onHeightChanged: if (page.following) showEnd()
        onContentYChanged: {
            if (!movingToEnd)
                page.following = contentY >= endY() - 2
        }

        ColumnLayout {
            id: column
            x: page.margin
            y: page.margin
            width: Math.min(flick.width - 2 * page.margin, page.maxContentWidth)
            spacing: 16
        }
    }

    RoundButton {
        id: jumpButton
        objectName: "jumpToLatestButton"
        anchors.right: flick.right
        anchors.bottom: flick.bottom
        anchors.margins: 16
        visible: !page.following && flick.contentHeight > flick.height
        text: qsTr("Jump to latest")
        Accessible.name: text
        ToolTip.visible: hovered
        ToolTip.text: qsTr("Show the newest message")
        focusPolicy: Qt.StrongFocus
        onClicked: page.jumpToLatest()
        background: Rectangle {
            radius: height / 2
            color: Theme.accentColor
            border.width: jumpButton.visualFocus ? 2 : 0
            border.color: Theme.textColor
        }
        contentItem: Label {
            text: "\u2193  " + jumpButton.text
            color: "white"
            leftPadding: 8
            rightPadding: 8
            horizontalAlignment: Text.AlignHCenter
            verticalAlignment: Text.AlignVCenter
        }
    }

    Rectangle {
        id: footerBar
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        height: footerColumn.implicitHeight + 24
        color: Theme.windowColor

        Rectangle {
            width: parent.width
            height: 1
            color: Theme.cardBorderColor
        }

        ColumnLayout {
            id: footerColumn
            x: page.margin
            y: 12
            width: Math.min(footerBar.width - 2 * page.margin, page.maxContentWidth)
            spacing: 8
        }
    }
}
