import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// One field of an assistant's form: a line, a text area or a choice, by the field's type.
ColumnLayout {
    id: field

    required property var fieldData // {label, type, placeholder, options}
    property string value

    signal edited(string text)

    spacing: 4

    Label {
        text: field.fieldData.label
        font.bold: true
    }

    TextField {
        objectName: field.fieldData.type === "text" ? "field:" + field.fieldData.label : ""
        visible: field.fieldData.type === "text"
        Layout.fillWidth: true
        placeholderText: field.fieldData.placeholder
        text: field.value
        Accessible.name: field.fieldData.label
        onTextEdited: field.edited(text)
    }

    ScrollView {
        id: areaScroller
        visible: field.fieldData.type === "textarea"
        Layout.fillWidth: true
        Layout.preferredHeight: 110
        // Only a field with more text than it shows takes the mouse wheel; otherwise the
        // wheel scrolls the page around it.
        Binding {
            target: areaScroller.contentItem
            property: "interactive"
            value: areaScroller.contentHeight > areaScroller.availableHeight + 1
        }
        TextArea {
            objectName: field.fieldData.type === "textarea" ? "field:" + field.fieldData.label : ""
            placeholderText: field.fieldData.placeholder
            text: field.value
            wrapMode: TextEdit.Wrap
            Accessible.name: field.fieldData.label
            onTextChanged: if (activeFocus) field.edited(text)
        }
    }

    SelectBox {
        objectName: field.fieldData.type === "select" ? "field:" + field.fieldData.label : ""
        visible: field.fieldData.type === "select"
        Layout.fillWidth: true
        model: field.fieldData.options
        currentIndex: model ? model.indexOf(field.value) : -1
        displayText: currentIndex < 0 ? (field.fieldData.placeholder || qsTr("Choose…")) : currentText
        Accessible.name: field.fieldData.label
        onActivated: field.edited(currentText)
    }
}
