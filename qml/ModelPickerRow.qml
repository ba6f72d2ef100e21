import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// A model's name with its badge, and optionally its one-line description.
RowLayout {
    id: row

    property var entry: ({})
    property bool showDetail: false
    // Puts a custom model's provider before its name, where no group heading shows it.
    property bool showGroup: false

    spacing: 8

    EmojiBadge {
        visible: (row.entry.icon ?? "").length > 0
        badge: row.entry.icon ?? ""
    }

    Label {
        visible: row.showGroup && (row.entry.group ?? "").length > 0
        text: (row.entry.group ?? "") + " ·"
        color: Theme.secondaryTextColor
        font.pixelSize: 14
    }

    Label {
        text: row.entry.name ?? ""
        font.pixelSize: 14
        elide: Text.ElideRight
        Layout.fillWidth: !row.showDetail
    }

    Label {
        Layout.fillWidth: true
        visible: row.showDetail
        text: row.entry.usage ?? (row.entry.features ? row.entry.features.join(" · ") : "")
        color: Theme.secondaryTextColor
        font.pixelSize: 12
        elide: Text.ElideRight
    }
}
