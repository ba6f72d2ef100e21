import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Zentrik

// The picture area: the last picture, or a note while there is none, and Save under it.
ColumnLayout {
    id: preview

    property url source
    property size pictureSize
    property bool busy: false

    signal saveRequested()

    spacing: 8

    Rectangle {
        Layout.fillWidth: true
        // Without a picture on its way the box is only as tall as its note, so what follows
        // (the examples) stays in view.
        Layout.preferredHeight: picture.status === Image.Ready || preview.busy
                                ? Math.max(260, Math.min(640, width * 0.75)) : 96
        radius: 12
        color: Theme.cardColor
        border.color: Theme.cardBorderColor

        Image {
            id: picture
            objectName: "generatedImage"
            anchors.fill: parent
            anchors.margins: 12
            source: preview.source
            fillMode: Image.PreserveAspectFit
            asynchronous: true
            cache: false
            smooth: true
            Accessible.role: Accessible.Graphic
            Accessible.name: qsTr("Generated image")
        }

        Label {
            anchors.centerIn: parent
            width: parent.width - 48
            visible: picture.status !== Image.Ready
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            color: Theme.secondaryTextColor
            text: preview.busy ? qsTr("Your image is on its way…") : qsTr("Your image will appear here.")
        }
    }

    RowLayout {
        Layout.fillWidth: true
        visible: picture.status === Image.Ready

        Label {
            Layout.fillWidth: true
            text: qsTr("%1 × %2 pixels").arg(preview.pictureSize.width).arg(preview.pictureSize.height)
            color: Theme.secondaryTextColor
        }

        Button {
            id: saveImageButton
            background: QuietBackground { owner: saveImageButton }
            objectName: "saveButton"
            flat: true
            enabled: !preview.busy
            Accessible.name: qsTr("Save Image")
            onClicked: preview.saveRequested()
            contentItem: RowLayout {
                spacing: 6
                SymbolIcon {
                    symbol: "arrow.down.circle"
                    size: 18
                    color: Theme.accentColor
                }
                Label {
                    text: qsTr("Save Image")
                    color: Theme.accentColor
                }
            }
        }
    }
}
