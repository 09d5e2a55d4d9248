import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Templates as T
import "../.."

/// A sheet over the whole window, which waits for the pilot. Escape leaves it.
Popup {
    anchors.centerIn: T.Overlay.overlay
    padding: Style.paddingPage
    modal: true
    focus: true
    closePolicy: Popup.CloseOnEscape

    T.Overlay.modal: Rectangle { color: Style.dim }

    background: Rectangle {
        radius: Style.radiusCard
        color: Style.controlBg
        border.width: 1
        border.color: Style.controlBorder
    }
}
