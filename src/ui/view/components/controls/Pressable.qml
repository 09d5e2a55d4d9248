import QtQuick
import QtQuick.Controls.Basic
import "../.."

/// What every button has: Return and Enter press it, once however long they are held, the pointer is a hand over it, and it
/// wears a ring while the keyboard is on it. What it looks like is the user's.
AbstractButton {
    id: button

    readonly property int ringWidth: visualFocus ? 2 : 0
    readonly property color ringColor: Style.controlBorderActive
    /// Shown where the pointer rests, and told to a screen reader.
    property string tip: ""
    property bool tipInside: false ///< see HoverTip

    focusPolicy: Qt.StrongFocus
    Accessible.name: text
    Accessible.description: tip
    Keys.onReturnPressed: event => { if (!event.isAutoRepeat) clicked() }
    Keys.onEnterPressed: event => { if (!event.isAutoRepeat) clicked() }
    Keys.onReleased: event => event.accepted = event.isAutoRepeat // X11 repeats Space as whole clicks

    HoverTip {
        text: button.tip
        hovered: button.hovered
        inside: button.tipInside
    }

    HoverHandler {
        enabled: button.enabled
        cursorShape: Qt.PointingHandCursor
    }
}
