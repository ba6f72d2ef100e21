import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import QtQuick.Pdf
import Zentrik

// The pages of the open PDF, one under the other: the wheel scrolls through them, Page Up
// and Page Down move a page at a time, and the page field jumps to any page.
Rectangle {
    id: pane

    required property PdfDocument document
    required property PdfChatViewModel chat
    // Off while a dialog has the keyboard.
    property bool pagingEnabled: true
    readonly property int pageCount: document.status === PdfDocument.Ready ? document.pageCount : 0
    // The page at the middle of the pane. The view's own currentPage follows only jumps and
    // its scroll bar, not the wheel, so the pane works it out from where the pages lie.
    property int shownPage: 0
    property TableView pagesTable: null

    function showPage(index) {
        const target = Math.max(0, Math.min(index, pageCount - 1))
        pageView.goToPage(target)
        shownPage = target
    }

    function updateShownPage() {
        const table = pagesTable
        if (!table || pageCount === 0)
            return
        // Scrolled to the end, the last page counts as shown even when it is shorter than
        // half the pane.
        if (table.contentY + table.height >= table.contentHeight - 1) {
            shownPage = pageCount - 1
            return
        }
        const middle = table.contentY - table.originY + table.height / 2
        let top = 0
        for (let page = 0; page < pageCount; ++page) {
            top += document.pagePointSize(page).height * pageView.renderScale + table.rowSpacing
            if (middle < top) {
                shownPage = page
                return
            }
        }
        shownPage = pageCount - 1
    }

    onShownPageChanged: chat.currentPage = shownPage

    Connections {
        target: pane.pagesTable
        function onContentYChanged() { pane.updateShownPage() }
    }

    color: Theme.cardColor
    clip: true

    // A click on the pages gives them the keyboard, away from a text field that would keep
    // Page Up and Page Down for itself.
    TapHandler {
        onTapped: pane.forceActiveFocus()
    }

    // With the keyboard inside the pages (where the text selection takes the shortcuts).
    Keys.onPressed: event => {
        if (event.key === Qt.Key_PageDown || event.key === Qt.Key_PageUp) {
            showPage(shownPage + (event.key === Qt.Key_PageDown ? 1 : -1))
            event.accepted = true
        }
    }

    Shortcut {
        sequences: ["PgDown"]
        enabled: pane.pagingEnabled && pane.pageCount > 0
        onActivated: pane.showPage(pane.shownPage + 1)
    }

    Shortcut {
        sequences: ["PgUp"]
        enabled: pane.pagingEnabled && pane.pageCount > 0
        onActivated: pane.showPage(pane.shownPage - 1)
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: 0
        visible: pane.chat.hasDocument

        PdfMultiPageView {
            id: pageView
            objectName: "pdfPageView"
            Layout.fillWidth: true
            Layout.fillHeight: true
            document: pane.document
            Component.onCompleted: {
                for (let i = 0; i < children.length; ++i) {
                    const table = children[i] as TableView
                    if (table)
                        pane.pagesTable = table
                }
            }
            // Pages follow the pane's width, so the whole line of text is always in view.
            onWidthChanged: fitWidth()
            function fitWidth() {
                if (pane.pageCount > 0 && width > 0)
                    scaleToWidth(width, height)
            }
            Connections {
                target: pane.document
                function onStatusChanged() { pageView.fitWidth() }
            }
        }

        Rectangle {
            Layout.fillWidth: true
            implicitHeight: 1
            color: Theme.cardBorderColor
        }

        RowLayout {
            Layout.alignment: Qt.AlignHCenter
            Layout.margins: 6
            spacing: 6

            ToolButton {
                objectName: "previousPageButton"
                enabled: pane.shownPage > 0
                Accessible.name: qsTr("Previous page")
                ToolTip.visible: hovered
                ToolTip.text: Accessible.name
                contentItem: SymbolIcon {
                    symbol: "chevron.up"
                    size: 20
                    color: Theme.textColor
                }
                onClicked: pane.showPage(pane.shownPage - 1)
            }
            Label {
                text: qsTr("Page")
            }
            SpinBox {
                id: pageField
                objectName: "pdfPageField"
                from: 1
                to: Math.max(1, pane.pageCount)
                value: pane.shownPage + 1
                editable: true
                Accessible.name: qsTr("Page number")
                onValueModified: pane.showPage(value - 1)
            }
            Label {
                objectName: "pdfPageIndicator"
                text: qsTr("of %1").arg(pane.pageCount)
            }
            ToolButton {
                objectName: "nextPageButton"
                enabled: pane.shownPage < pane.pageCount - 1
                Accessible.name: qsTr("Next page")
                ToolTip.visible: hovered
                ToolTip.text: Accessible.name
                contentItem: SymbolIcon {
                    symbol: "chevron.down"
                    size: 20
                    color: Theme.textColor
                }
                onClicked: pane.showPage(pane.shownPage + 1)
            }
        }
    }

    ColumnLayout {
        anchors.centerIn: parent
        visible: !pane.chat.hasDocument
        spacing: 12
        SymbolIcon {
            Layout.alignment: Qt.AlignHCenter
            symbol: "doc.text.magnifyingglass"
            size: 48
            color: Theme.secondaryTextColor
        }
        Label {
            Layout.alignment: Qt.AlignHCenter
            text: qsTr("Open a PDF or drop one here.")
            color: Theme.secondaryTextColor
        }
    }
}
