import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// A model server found running on this computer, offered with one button to add it. Nothing
// is added until that button is pressed.
Rectangle {
    id: row

    required property var offer // {name, baseUrl, models, modelCount}
    property bool busy: false

    signal useRequested

    objectName: "localServerOffer:" + offer.name
    implicitHeight: layout.implicitHeight + 24
    radius: 10
    color: Qt.rgba(Theme.accentColor.r, Theme.accentColor.g, Theme.accentColor.b, 0.10)
    border.color: Theme.accentColor
    Accessible.role: Accessible.Grouping
    Accessible.name: title.text

    RowLayout {
        id: layout
        anchors.fill: parent
        anchors.margins: 12
        spacing: 12

        SymbolIcon {
            symbol: "laptopcomputer"
            color: Theme.accentColor
        }

        ColumnLayout {
            Layout.fillWidth: true
            spacing: 2
            Label {
                id: title
                Layout.fillWidth: true
                text: qsTr("A model server is running on this computer: use it")
                font.bold: true
                wrapMode: Text.Wrap
            }
            Label {
                Layout.fillWidth: true
                text: (row.offer.modelCount === 1 ? qsTr("%1 at %2 · 1 model") : qsTr("%1 at %2 · %3 models"))
                      .arg(row.offer.name).arg(row.offer.baseUrl).arg(row.offer.modelCount)
                color: Theme.secondaryTextColor
                wrapMode: Text.Wrap
            }
        }

        AccentButton {
            objectName: "useLocalServer:" + row.offer.name
            text: qsTr("Use It")
            Accessible.name: qsTr("Use %1").arg(row.offer.name)
            enabled: !row.busy
            onClicked: row.useRequested()
        }
    }
}
