pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// Every stored conversation, the newest first under Today, Yesterday, Previous 7 days and
// Older, or the ranked results of a search with the matching words in bold. A row opens
// its conversation in its own tool. The list's keys: the arrows move, Return opens, F2
// renames, Ctrl+E exports, Delete deletes (with an undo bar for a while); Ctrl+F searches.
Item {
    id: page

    property ContentViewModel navigation
    // The row whose title is being edited.
    property string renamingId
    property string status
    property bool statusFailed: false

    function open(row: var) {
        if (page.navigation && row)
            page.navigation.openConversation(row.tool, row.conversationId, row.assistant)
    }

    objectName: "historyView"

    HistoryListModel {
        id: conversations
        objectName: "historyListModel"
        history: HistoryService
        searchText: searchField.text.trim()
    }

    Connections {
        target: HistoryService
        function onOperationFinished(succeeded, message) {
            page.statusFailed = !succeeded
            page.status = message
        }
    }

    HistoryExportDialog {
        id: exportDialog
    }

    FilePicker {
        id: importDialog
        objectName: "historyImportDialog"
        title: qsTr("Import History")
        nameFilters: [qsTr("Zentrik history (*.json)")]
        onAccepted: file => HistoryService.importFile(file)
    }

    // The sidebar keeps the focus when the screen opens from it; Ctrl+F goes to the search.
    Shortcut {
        sequences: ["Ctrl+F"]
        onActivated: searchField.forceActiveFocus(Qt.ShortcutFocusReason)
    }

    ColumnLayout {
        id: column
        x: 32
        y: 32
        width: Math.min(page.width - 64, 1120)
        height: page.height - 32
        spacing: 14

        ScreenHeading {
            Layout.fillWidth: true
            title: qsTr("History")
            symbol: "clock.arrow.circlepath"
            subtitle: HistoryService.keepHistory ? qsTr("Your conversations and runs, kept on this computer. Open one to go on with it.")
                                                 : qsTr("Saving is off in Settings: nothing new is kept.")
        }

        RowLayout {
            Layout.fillWidth: true
            spacing: 10

            TextField {
                id: searchField
                objectName: "historySearchField"
                Layout.fillWidth: true
                placeholderText: qsTr("Search every conversation")
                Accessible.name: qsTr("Search history")
                selectByMouse: true
                leftPadding: 40
                Keys.onDownPressed: {
                    if (list.count > 0) {
                        list.currentIndex = Math.max(0, list.currentIndex)
                        list.forceActiveFocus(Qt.TabFocusReason)
                    }
                }
                Keys.onReturnPressed: {
                    if (list.count > 0)
                        page.open(list.itemAtIndex(Math.max(0, list.currentIndex)))
                }
                Keys.onEscapePressed: text = ""

                SymbolIcon {
                    anchors.left: parent.left
                    anchors.leftMargin: 10
                    anchors.verticalCenter: parent.verticalCenter
                    symbol: "magnifyingglass"
                    color: Theme.secondaryTextColor
                }
            }
            PlainButton {
                objectName: "exportAllButton"
                symbol: "square.and.arrow.up"
                text: qsTr("Export All…")
                enabled: conversations.count > 0 || searchField.text.length > 0
                onClicked: exportDialog.exportAll()
            }
            PlainButton {
                objectName: "importButton"
                symbol: "square.and.arrow.down"
                text: qsTr("Import…")
                onClicked: importDialog.open()
            }
        }

        Label {
            objectName: "historyStatus"
            Layout.fillWidth: true
            visible: page.status.length > 0
            text: page.status
            color: page.statusFailed ? Theme.warningColor : Theme.secondaryTextColor
            wrapMode: Text.Wrap
        }

        Label {
            objectName: "historyEmpty"
            Layout.fillWidth: true
            Layout.topMargin: 24
            visible: list.count === 0 && !conversations.isLoading
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            color: Theme.secondaryTextColor
            text: conversations.searchText.length > 0 ? qsTr("Nothing found for \"%1\".").arg(conversations.searchText)
                                                      : qsTr("No conversations yet. What you ask in Ask Me Anything, the developer tools, the PDF chat, the generators and the image studio is kept here.")
        }

        ListView {
            id: list
            objectName: "historyList"
            Layout.fillWidth: true
            Layout.fillHeight: true
            clip: true
            spacing: 8
            model: conversations
            activeFocusOnTab: true
            keyNavigationEnabled: true
            highlightFollowsCurrentItem: false
            boundsBehavior: Flickable.StopAtBounds
            Accessible.role: Accessible.List
            Accessible.name: qsTr("Conversations")
            // Ranked results read best first, not by day.
            section.property: conversations.searchText.length > 0 ? "" : "section"
            section.delegate: HistorySectionDelegate {}
            ScrollBar.vertical: ScrollBar {}

            // A plain value: Qt 6.4's compiler cannot cast to a type of this module.
            readonly property var current: currentItem

            onCurrentIndexChanged: positionViewAtIndex(currentIndex, ListView.Contain)
            Keys.onReturnPressed: page.open(list.current)
            Keys.onEnterPressed: page.open(list.current)
            Keys.onDeletePressed: if (list.current) conversations.remove(list.current.conversationId)
            Keys.onPressed: event => {
                if (!list.current)
                    return
                if (event.key === Qt.Key_F2) {
                    page.renamingId = list.current.conversationId
                    event.accepted = true
                } else if (event.key === Qt.Key_E && (event.modifiers & Qt.ControlModifier)) {
                    exportDialog.exportConversation(list.current.conversationId, list.current.title)
                    event.accepted = true
                }
            }

            delegate: HistoryRow {
                id: row
                width: list.width - 12
                keyboardCurrent: list.activeFocus && row.ListView.isCurrentItem
                renaming: page.renamingId === row.conversationId
                onOpened: page.open(row)
                onRenameRequested: page.renamingId = row.conversationId
                onRenamed: title => {
                    page.renamingId = ""
                    if (title.trim().length > 0 && title !== row.title)
                        conversations.rename(row.conversationId, title.trim())
                    list.forceActiveFocus(Qt.OtherFocusReason)
                }
                onRenameCancelled: {
                    if (page.renamingId === row.conversationId)
                        page.renamingId = ""
                }
                onExportRequested: exportDialog.exportConversation(row.conversationId, row.title)
                onRemoveRequested: conversations.remove(row.conversationId)
            }
        }

        // After a deletion: what went, and a way back, until it times out or is dismissed.
        Rectangle {
            objectName: "undoBar"
            Layout.fillWidth: true
            Layout.bottomMargin: 16
            visible: conversations.canUndo
            implicitHeight: undoRow.implicitHeight + 16
            radius: 10
            color: Theme.textColor
            Accessible.role: Accessible.AlertMessage
            Accessible.name: conversations.undoText

            RowLayout {
                id: undoRow
                anchors.fill: parent
                anchors.margins: 8
                anchors.leftMargin: 16
                spacing: 10
                Label {
                    Layout.fillWidth: true
                    text: conversations.undoText
                    color: Theme.windowColor
                    elide: Text.ElideRight
                }
                AccentButton {
                    objectName: "undoButton"
                    symbol: "arrow.uturn.backward"
                    text: qsTr("Undo")
                    onClicked: conversations.undoRemove()
                }
                HistoryRowButton {
                    objectName: "dismissUndoButton"
                    symbol: "xmark"
                    text: qsTr("Dismiss")
                    contentItem: SymbolIcon {
                        symbol: "xmark"
                        size: 20
                        color: Theme.windowColor
                    }
                    onClicked: conversations.dismissUndo()
                }
            }
        }
    }

    // Ctrl+Z while the undo bar shows puts the conversation back.
    Shortcut {
        sequences: ["Ctrl+Z"]
        enabled: conversations.canUndo && !searchField.activeFocus
        onActivated: conversations.undoRemove()
    }
}
