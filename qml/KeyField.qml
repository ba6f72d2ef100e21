import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// An API key entry, masked unless the user asks to see it.
RowLayout {
    id: field

    property alias placeholderText: input.placeholderText
    property string key
    property bool revealed: false

    signal edited(string value)

    Layout.fillWidth: true
    spacing: 4

    SymbolIcon {
        symbol: "key.fill"
        size: 18
        color: Theme.secondaryTextColor
    }

    TextField {
        id: input
        objectName: field.objectName + ".input"
        Layout.fillWidth: true
        text: field.key
        echoMode: field.revealed ? TextInput.Normal : TextInput.Password
        inputMethodHints: Qt.ImhSensitiveData | Qt.ImhNoPredictiveText
        selectByMouse: true
        Accessible.name: placeholderText
        onTextEdited: field.edited(text)
    }

    ToolButton {
        id: revealButton
        background: QuietBackground { owner: revealButton }
        text: Theme.glyph(field.revealed ? "eye.slash" : "eye")
        font.family: Theme.iconFontFamily
        font.pixelSize: 18
        Accessible.name: field.revealed ? qsTr("Hide key") : qsTr("Show key")
        ToolTip.visible: hovered
        ToolTip.text: Accessible.name
        onClicked: field.revealed = !field.revealed
    }
}
