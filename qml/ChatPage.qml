import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// A conversation screen: the conversation scrolls above an input pinned to the bottom. The
// view follows what arrives (a new message, a reply growing as it streams) while the user is
// at the end; once they scroll up it stays where they put it and offers a button back to the
// latest message. The messages are a list view, so that only those near the screen exist as
// items: a session of a thousand replies costs no more to draw than one of ten. What the page
// declares goes above the messages; `tail` goes under them (a reply still streaming).
Item {
    id: page

    default property alias content: headerColumn.data
    property alias footer: footerColumn.data
    property alias tail: tailColumn.data
    property alias messages: flick.model
    property alias messageDelegate: flick.delegate
    property int maxContentWidth: 1120
    property int margin: 32
    // The width of a message: the window's less its margins, up to maxContentWidth.
    readonly property real contentWidth: Math.min(flick.width - 2 * margin, maxContentWidth)
    // Whether the end of the conversation is kept in view.
    property bool following: true
    readonly property alias conversation: flick

    function jumpToLatest() {
        following = true
        flick.showEnd()
    }

    ListView {
        id: flick

        // Set while the view moves itself, so that only the user's scrolling stops following.
        property bool movingToEnd: false

        // Worked out on each call: inside a change handler a binding on the sizes may not
        // have caught up yet. The list's content begins at originY, which moves as the
        // heights of messages not yet drawn are estimated again.
        function endY() {
            return Math.max(originY - topMargin, originY + contentHeight + bottomMargin - height)
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
        leftMargin: Math.max(page.margin, (width - page.maxContentWidth) / 2)
        rightMargin: leftMargin
        topMargin: page.margin
        bottomMargin: page.margin
        spacing: 16
        clip: true
        boundsBehavior: Flickable.StopAtBounds
        // Everything focusable lives in the messages; the list itself takes no keys.
        keyNavigationEnabled: false
        ScrollBar.vertical: ScrollBar {}

        onContentHeightChanged: if (page.following) showEnd()
        onHeightChanged: if (page.following) showEnd()
        onContentYChanged: {
            if (!movingToEnd)
                page.following = contentY >= endY() - 2
        }

        // Empty, and sized by the bindings below: a header that named this file's ids would
        // need the file's components bound to it, and Qt 6.4's list view then refuses to
        // make its header.
        header: Item {}
        footer: Item {}
    }

    Binding {
        target: flick.headerItem
        when: flick.headerItem !== null
        property: "height"
        value: headerColumn.implicitHeight + (headerColumn.implicitHeight > 0 ? flick.spacing : 0)
    }

    Binding {
        target: flick.footerItem
        when: flick.footerItem !== null
        property: "height"
        value: tailColumn.implicitHeight > 0 ? tailColumn.implicitHeight + flick.spacing : 0
    }

    // The page's own items, shown in the list's header and footer; the list makes those
    // items, so these columns move into them.
    ColumnLayout {
        id: headerColumn
        parent: flick.headerItem
        width: page.contentWidth
        spacing: 16
    }

    ColumnLayout {
        id: tailColumn
        parent: flick.footerItem
        y: flick.spacing
        width: page.contentWidth
        spacing: 16
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
            x: Math.max(page.margin, (footerBar.width - page.maxContentWidth) / 2)
            y: 12
            width: page.contentWidth
            spacing: 8
        }
    }
}
