import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// Under a chat: ask again for the last reply, or put the last question back in the input to
// change it; while it is being changed, a line says what sending does, and Cancel.
RowLayout {
    id: actions

    required property ChatToolViewModel chat

    visible: chat.canRegenerate || chat.canEditLastQuestion || chat.isEditingLastQuestion
    spacing: 10

    Label {
        objectName: "editingNotice"
        Layout.fillWidth: true
        visible: actions.chat.isEditingLastQuestion
        text: qsTr("Editing the last question: sending replaces it and its reply.")
        color: Theme.secondaryTextColor
        wrapMode: Text.Wrap
    }
    Item {
        Layout.fillWidth: true
        visible: !actions.chat.isEditingLastQuestion
    }
    PlainButton {
        objectName: "cancelEditButton"
        visible: actions.chat.isEditingLastQuestion
        symbol: "xmark"
        text: qsTr("Cancel Edit")
        onClicked: actions.chat.cancelEdit()
    }
    PlainButton {
        objectName: "editLastQuestionButton"
        visible: actions.chat.canEditLastQuestion && !actions.chat.isEditingLastQuestion
        symbol: "pencil"
        text: qsTr("Edit Last Question")
        onClicked: actions.chat.editLastQuestion()
    }
    PlainButton {
        objectName: "regenerateButton"
        visible: actions.chat.canRegenerate && !actions.chat.isEditingLastQuestion
        symbol: "arrow.clockwise"
        text: qsTr("Regenerate")
        onClicked: actions.chat.regenerate()
    }
}
