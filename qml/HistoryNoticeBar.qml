import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// One line above every screen when the conversation history could not be opened or written
// (an unreadable file moved aside, a full disk), until the user closes it or the next one
// comes. Settings' history section shows it whole.
Rectangle {
    id: bar

    property string dismissed

    objectName: "historyNoticeBar"
    visible: HistoryService.notice.length > 0 && HistoryService.notice !== dismissed
    implicitHeight: visible ? row.implicitHeight + 12 : 0
    color: Qt.rgba(Theme.warningColor.r, Theme.warningColor.g, Theme.warningColor.b, 0.14)
    Accessible.role: Accessible.AlertMessage
    Accessible.name: HistoryService.notice

    RowLayout {
        id: row
        anchors.fill: parent
        anchors.leftMargin: 16
        anchors.rightMargin: 8
        anchors.topMargin: 6
        anchors.bottomMargin: 6
        spacing: 10
        SymbolIcon {
            symbol: "exclamationmark.triangle.fill"
            color: Theme.warningColor
        }
        Label {
            objectName: "historyNoticeText"
            Layout.fillWidth: true
            text: HistoryService.notice
            elide: Text.ElideRight
            ToolTip.visible: truncated && hover.hovered
            ToolTip.text: text
            HoverHandler {
                id: hover
            }
        }
        HistoryRowButton {
            objectName: "dismissHistoryNotice"
            symbol: "xmark"
            text: qsTr("Close")
            focusPolicy: Qt.StrongFocus
            onClicked: bar.dismissed = HistoryService.notice
        }
    }
}
