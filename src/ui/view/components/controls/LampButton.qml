import QtQuick
import QtQuick.Controls.Basic
import "../.."

/// A lamp on an instrument's glass that can be pressed.
AbstractButton {
    id: button

    property bool lit: false

    implicitWidth: implicitContentWidth
    implicitHeight: implicitContentHeight
    focusPolicy: Qt.StrongFocus
    Accessible.name: text
    Accessible.checkable: true
    Accessible.checked: lit
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

    background: Rectangle {
        radius: height / 2
        color: button.down || button.hovered ? Style.instrumentGrid : Style.instrumentGlass
        border.width: button.visualFocus ? 2 : 0
        border.color: Style.controlBorderActive
    }
    contentItem: Lamp {
        Accessible.ignored: true
        dark: true
        text: button.text
        lit: button.lit
        litColor: Style.instrumentActive
    }
    HoverHandler { cursorShape: Qt.PointingHandCursor }
}
