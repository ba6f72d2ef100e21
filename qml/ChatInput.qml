import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// The message field of a chat: Enter sends, Shift+Enter breaks the line.
RowLayout {
    id: input

    property alias text: field.text
    property alias placeholderText: field.placeholderText
    property string buttonText
    property string buttonSymbol: "paperplane.fill"
    property bool busy: false
    property bool monospace: false

    signal submitted

    spacing: 10

    ScrollView {
        id: scroller
        Layout.fillWidth: true
        Layout.preferredHeight: Math.min(140, Math.max(48, field.implicitHeight))
        // Only a field with more text than it shows takes the mouse wheel; otherwise the
        // wheel scrolls the page around it.
        Binding {
            target: scroller.contentItem
            property: "interactive"
            value: scroller.contentHeight > scroller.availableHeight + 1
        }
        TextArea {
            id: field
            objectName: "chatInputField"
            wrapMode: TextEdit.Wrap
            font.family: input.monospace ? Theme.monospaceFontFamily : Application.font.family
            Accessible.name: input.placeholderText
            Keys.onReturnPressed: event => {
                if (event.modifiers & Qt.ShiftModifier) {
                    event.accepted = false
                } else {
                    input.submitted()
                }
            }
            Keys.onEnterPressed: input.submitted()
        }
    }

    AccentButton {
        objectName: "sendButton"
        text: input.buttonText
        enabled: !input.busy && field.text.trim().length > 0
        symbol: input.buttonSymbol
        onClicked: input.submitted()
    }
}
