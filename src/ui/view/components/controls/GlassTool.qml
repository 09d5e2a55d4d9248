import QtQuick
import "../.."

/// A small round button on an instrument's dark glass, with a sign instead of its text.
Pressable {
    id: tool

    property string sign: ""

    implicitWidth: 26
    implicitHeight: 26
    background: Rectangle {
        radius: width / 2
        color: tool.hovered || tool.down ? Style.instrumentGrid : "transparent"
        border.width: tool.ringWidth
        border.color: tool.ringColor
    }
    contentItem: AppText {
        text: tool.sign
        color: Style.instrumentLine
        font.pixelSize: Style.fontTitle
        horizontalAlignment: Text.AlignHCenter
    }
}
