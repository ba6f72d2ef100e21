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
        id: chat
        objectName: "pdfChatViewModel"
        apiManager: APIManager
    }

    PdfDocument {
        id: document
        source: chat.source
    }

    FileDialog {
        id: openDialog
        title: qsTr("Open a PDF")
        nameFilters: [qsTr("PDF documents (*.pdf)")]
        onAccepted: chat.open(selectedFile)
    }

    DropArea {
        anchors.fill: parent
        onDropped: drop => {
            if (drop.hasUrls) {
                chat.open(drop.urls[0])
            }
        }
    }

    SplitView {
        anchors.fill: parent

        Rectangle {
            SplitView.preferredWidth: page.width * 0.5
            SplitView.minimumWidth: 280
            color: Theme.cardColor

            PdfScrollablePageView {
                id: pageView
                objectName: "pdfPageView"
                anchors.fill: parent
                visible: chat.hasDocument
                document: document
                onCurrentPageChanged: chat.currentPage = currentPage
            }

            ColumnLayout {
                anchors.centerIn: parent
                visible: !chat.hasDocument
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
            chat: chat
            onOpenRequested: openDialog.open()
            onPageRequested: number => {
                chat.currentPage = number - 1
                pageView.goToPage(number - 1)
            }
        }
    }

    PiiAlertView {
        alert: chat.piiAlertVM
        onSendOriginal: chat.sendOriginal()
        onSendRedacted: chat.sendRedacted()
    }
}
