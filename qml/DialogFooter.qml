import QtQuick
import QtQuick.Controls

// The button row of an AppDialog, on the dialog's own body.
DialogButtonBox {
    padding: 16
    topPadding: 8
    spacing: 10
    background: null
}
