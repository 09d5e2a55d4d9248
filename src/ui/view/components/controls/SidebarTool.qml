import QtQuick
import "../.."

/// A small round button with a sign instead of a text. What it does stands in its tip.
Pressable {
    id: tool

    implicitWidth: 24
    implicitHeight: 24
    padding: 0

    background: Rectangle {
        radius: width / 2
        color: tool.down ? Style.accentSoft : tool.hovered ? Style.sidebarItemSelected : Style.sheet
        border.width: tool.ringWidth
        border.color: tool.ringColor
    }
}
