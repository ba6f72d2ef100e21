import QtQuick
import QtQuick.Controls
import QtQuick.Dialogs
import QtQuick.Layouts
import QtQuick.Pdf
import Zentrik

// Chat with a PDF: the pages on the left, the summary card and the conversation on the
// right (the pages above the conversation when the window is too narrow for both side by
// side). Open with the button or by dropping a file; a cited page in an answer is a link.
Item {
    id: page

    // Below this width the two halves no longer fit beside each other.
    readonly property bool stacked: width < 720

    property ContentViewModel navigation

    signal openSettingsRequested

    objectName: "pdfChatView"

    PdfChatViewModel {
        id: pdfChat
        objectName: "pdfChatViewModel"
        apiManager: APIManager
        history: HistoryService
    }

    // A conversation opened from the History screen (its document opens with it).
    Component.onCompleted: {
        const conversation = page.navigation ? page.navigation.takeConversation("pdfChat") : ""
        if (conversation.length > 0)
            pdfChat.openConversation(conversation)
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
        orientation: page.stacked ? Qt.Vertical : Qt.Horizontal

        PdfPagesPane {
            id: pagesPane
            SplitView.preferredWidth: page.width * 0.5
            SplitView.preferredHeight: page.height * 0.4
            SplitView.minimumWidth: 240
            SplitView.minimumHeight: 160
            document: pdfDocument
            chat: pdfChat
            pagingEnabled: !pdfChat.piiAlertVM.showAlert
        }

        PdfChatPanel {
            SplitView.fillWidth: true
            SplitView.fillHeight: true
            SplitView.minimumWidth: 300
            SplitView.minimumHeight: 240
            chat: pdfChat
            onOpenRequested: openDialog.open()
            onOpenSettingsRequested: page.openSettingsRequested()
            onPageRequested: number => pagesPane.showPage(number - 1)
        }
    }

    PiiAlertView {
        alert: pdfChat.piiAlertVM
        onSendOriginal: pdfChat.sendOriginal()
        onSendRedacted: pdfChat.sendRedacted()
    }
}
