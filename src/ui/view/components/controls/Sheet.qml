import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Templates as T
import "../.."

/// A sheet over the whole window, which waits for the pilot. Escape leaves it. Whoever had the keys gets them back.
Popup {
    /// Has whoever had them.
    required property Item beneath

    anchors.centerIn: T.Overlay.overlay
    padding: Style.paddingPage
    modal: true
    focus: true
    closePolicy: Popup.CloseOnEscape
    onClosed: {
        const has = beneath.Window.activeFocusItem
        if (!has || has === beneath.Window.contentItem) // Qt leaves them there, unless another sheet is open
            beneath.forceActiveFocus(Qt.PopupFocusReason)
    }

    T.Overlay.modal: Rectangle { color: Style.dim }

    background: Rectangle {
        radius: Style.radiusCard
        color: Style.controlBg
        border.width: 1
        border.color: Style.controlBorder
    }
}
