import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

// A screen's scrolling body: a column no wider than maxContentWidth, at the same distance from
// the sidebar on every screen. The control that takes the keyboard focus is scrolled into view.
// With followsGrowth on, growing content (a streamed reply) keeps the end of the page in view
// unless the user scrolls away from it.
ScrollView {
    id: page

    default property alias content: column.data
    property int maxContentWidth: 1120
    property int margin: 32
    property bool followsGrowth: false
    property bool following: true

    // Brings a control inside the page fully into view, with a little room around it.
    function reveal(item) {
        let ancestor = item
        while (ancestor && ancestor !== column)
            ancestor = ancestor.parent
        const flickable = page.contentItem as Flickable
        if (!ancestor || !flickable)
            return
        const top = item.mapToItem(column, 0, 0).y + column.y
        const bottom = top + item.height
        const room = 16
        if (top - room < flickable.contentY)
            flickable.contentY = Math.max(0, top - room)
        else if (bottom + room > flickable.contentY + flickable.height)
            flickable.contentY = Math.max(0, Math.min(flickable.contentHeight - flickable.height,
                                                      bottom + room - flickable.height))
    }

    contentWidth: availableWidth
    contentHeight: column.implicitHeight + 2 * margin
    clip: true

    Connections {
        target: page.Window.window
        function onActiveFocusItemChanged() {
            const item = page.Window.window.activeFocusItem
            if (item)
                page.reveal(item)
        }
    }

    onFollowsGrowthChanged: following = true

    Connections {
        target: page.contentItem
        enabled: page.followsGrowth
        property bool movingToEnd: false
        function showEnd() {
            const flick = page.contentItem as Flickable
            movingToEnd = true
            flick.contentY = Math.max(0, flick.contentHeight - flick.height)
            movingToEnd = false
        }
        function onContentHeightChanged() {
            if (page.following)
                showEnd()
        }
        function onContentYChanged() {
            const flick = page.contentItem as Flickable
            if (!movingToEnd)
                page.following = flick.contentY >= flick.contentHeight - flick.height - 2
        }
    }

    ColumnLayout {
        id: column
        x: page.margin
        y: page.margin
        width: Math.min(page.availableWidth - 2 * page.margin, page.maxContentWidth)
        spacing: 16
    }
}
