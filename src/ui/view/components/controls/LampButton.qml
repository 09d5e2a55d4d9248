import QtQuick
import "../.."

/// A lamp on an instrument's glass that can be pressed.
Pressable {
    id: button

    property bool lit: false
    property bool small: false

    implicitWidth: implicitContentWidth
    implicitHeight: implicitContentHeight
    Accessible.checkable: true
    Accessible.checked: lit

    background: Rectangle {
        radius: height / 2
        color: button.down || button.hovered ? Style.instrumentGrid : Style.instrumentGlass
        border.width: button.ringWidth
        border.color: button.ringColor
    }
    contentItem: Lamp {
        Accessible.ignored: true
        dark: true
        text: button.text
        fontSize: button.small ? 10 : Style.fontSmall
        implicitHeight: button.small ? 20 : 26
        lit: button.lit
        litColor: Style.instrumentActive
    }
}
