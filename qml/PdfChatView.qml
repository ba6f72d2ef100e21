import QtQuick
import QtQuick.Controls
import QtQuick.Dialogs
import QtQuick.Layouts
import QtQuick.Pdf
import Zentrik

// Chat with a PDF: the pages on the left, the summary card and the conversation on the
// right. Open with the button or by dropping a file; a cited page in an answer is a link.
Item {
    id: page

    objectName: "pdfChatView"

    PdfChatViewModel {
        id: pdfChat
        objectName: "pdfChatViewModel"
        apiManager: APIManager
    }

    PdfDocument {
        id: pdfDocument
        source: pdfChat.source
    }

    FilePicker {
        id: openDialog
        objectName: "openPdfDialog"
        title: qsTr("Open a PDF")
        nameFilters: [qsTr("PDF documents (*.pdf)")]
        onAccepted: file => pdfChat.open(file)
    }

    DropArea {
        anchors.fill: parent
        onDropped: drop => {
            if (drop.hasUrls) {
                pdfChat.open(drop.urls[0])
            }
        }
    }

    SplitView {
        anchors.fill: parent

        Rectangle {
            SplitView.preferredWidth: page.width * 0.5
            SplitView.minimumWidth: 280
            color: Theme.cardColor
            clip: true

            PdfScrollablePageView {
                id: pageView
                objectName: "pdfPageView"
                anchors.fill: parent
                visible: pdfChat.hasDocument
                document: pdfDocument
                onCurrentPageChanged: pdfChat.currentPage = currentPage
                // Pages follow the pane's width, so the whole line of text is always in view.
                onWidthChanged: fitWidth()
                function fitWidth() {
                    if (pdfDocument.status === PdfDocument.Ready && width > 0)
                        scaleToWidth(width, height)
                }
                Connections {
                    target: pdfDocument
                    function onStatusChanged() { pageView.fitWidth() }
                }
            }

            ColumnLayout {
                anchors.centerIn: parent
                visible: !pdfChat.hasDocument
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

        PdfChatPanel {
            SplitView.fillWidth: true
            SplitView.minimumWidth: 360
            chat: pdfChat
            onOpenRequested: openDialog.open()
            onPageRequested: number => {
                pdfChat.currentPage = number - 1
                pageView.goToPage(number - 1)
            }
        }
    }

    PiiAlertView {
        alert: pdfChat.piiAlertVM
        onSendOriginal: pdfChat.sendOriginal()
        onSendRedacted: pdfChat.sendRedacted()
    }
}
