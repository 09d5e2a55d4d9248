import QtQuick
import QtQuick.Controls.Basic
import "../.."

/// What every button has: Return and Enter press it, the pointer is a hand over it, and it wears a ring while the keyboard
/// is on it. What it looks like is the user's.
AbstractButton {
    readonly property int ringWidth: visualFocus ? 2 : 0
    readonly property color ringColor: Style.controlBorderActive

    focusPolicy: Qt.StrongFocus
    Accessible.name: text
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

    HoverHandler { cursorShape: Qt.PointingHandCursor }
}
