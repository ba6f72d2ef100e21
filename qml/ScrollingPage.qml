import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

// A screen's scrolling body: a centred column no wider than maxContentWidth.
ScrollView {
    id: page

    default property alias content: column.data
    property int maxContentWidth: 1120
    property int margin: 32

    contentWidth: availableWidth
    contentHeight: column.implicitHeight + 2 * margin
    clip: true

    ColumnLayout {
        id: column
        x: Math.max(page.margin, (page.availableWidth - width) / 2)
        y: page.margin
        width: Math.min(page.availableWidth - 2 * page.margin, page.maxContentWidth)
        spacing: 16
    }
}
