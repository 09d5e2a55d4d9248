import QtQuick
import QtQuick.Controls.Basic
import "../.."

/// A small control in a station's row. The right button raises secondary().
Pressable {
    id: control

    signal secondary()

    focusPolicy: Qt.TabFocus
    leftPadding: 7
    rightPadding: 7
    implicitHeight: 20
    width: Math.max(58, implicitWidth)
    font.family: Style.fontFamily
    font.pixelSize: 11
    ToolTip.visible: hovered && ToolTip.text.length > 0
    ToolTip.delay: 600
    ToolTip.text: Accessible.description

    MouseArea {
        anchors.fill: parent
        acceptedButtons: Qt.RightButton
        onClicked: control.secondary()
    }

    contentItem: AppText {
        text: control.text
        font: control.font
        color: Style.textPrimary
        horizontalAlignment: Text.AlignHCenter
    }
    background: Rectangle {
        radius: height / 2
        color: control.down || control.hovered ? Style.controlSelection : Style.accentSoft
        border.width: control.ringWidth
        border.color: control.ringColor
    }
}
