pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// The right half of the PDF chat: the document's name, Summarize and its card, the
// questions and answers, and the question field pinned under them.
ChatPage {
    id: panel

    required property PdfChatViewModel chat

    signal openRequested
    signal openSettingsRequested
    signal pageRequested(int number)

    maxContentWidth: 900
    margin: 20

    ScreenHeading {
        Layout.fillWidth: true
        title: qsTr("Chat With Your PDFs")
        symbol: "doc.text.magnifyingglass"
        subtitle: panel.chat.hasDocument ? qsTr("%1 — %n page(s)", "", panel.chat.pageCount).arg(panel.chat.documentTitle)
                                         : qsTr("Ask questions about a document and get a summary of it.")
    }

    Flow {
        Layout.fillWidth: true
        spacing: 10
        PlainButton {
            objectName: "openPdfButton"
            text: qsTr("Open PDF…")
            onClicked: panel.openRequested()
        }
        PlainButton {
            objectName: "summarizeButton"
            text: panel.chat.isSummarizing ? qsTr("Summarizing...") : qsTr("Summarize")
            enabled: panel.chat.hasDocument && !panel.chat.isSummarizing
            onClicked: panel.chat.summarize()
        }
        BusyIndicator {
            running: panel.chat.isSummarizing || panel.chat.isAIProcessing
            visible: running
            height: 32
        }
    }

    Label {
        objectName: "documentError"
        Layout.fillWidth: true
        visible: panel.chat.documentError.length > 0
        text: panel.chat.documentError
        color: Theme.warningColor
        wrapMode: Text.Wrap
    }

    RecentConversations {
        Layout.fillWidth: true
        chat: panel.chat
    }

    PdfSummaryCard {
        Layout.fillWidth: true
        visible: panel.chat.hasSummary
        chat: panel.chat
    }

    messages: panel.chat.messages
    messageDelegate: ChatMessageDelegate {
        width: panel.contentWidth
        citedPages: role === "assistant" ? panel.chat.citedPages(content) : []
        onPageLinkActivated: number => panel.pageRequested(number)
    }

    footer: [
        LastTurnActions {
            Layout.fillWidth: true
            chat: panel.chat
        },
        ErrorNotice {
            Layout.fillWidth: true
            labelName: "pdfChatError"
            text: panel.chat.errorMessage
            opensSettings: panel.chat.errorOpensSettings
            onOpenSettingsRequested: panel.openSettingsRequested()
        },
        ChatInput {
            Layout.fillWidth: true
            placeholderText: qsTr("Ask a question about the document...")
            buttonText: qsTr("Ask")
            busy: panel.chat.isAIProcessing || !panel.chat.hasDocument
            text: panel.chat.newMessage
            onTextChanged: panel.chat.newMessage = text
            onSubmitted: panel.chat.send()
        }
    ]
}
