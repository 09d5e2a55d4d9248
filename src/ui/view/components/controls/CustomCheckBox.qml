import QtQuick
import QtQuick.Controls.Basic
import "../.."

CheckBox {
    id: box

    Accessible.name: text
    spacing: Style.spacingSmall
    padding: 0
    implicitHeight: 32
    font.family: Style.fontFamily
    font.pixelSize: Style.fontBody
    Keys.onReturnPressed: event => {
        if (event.isAutoRepeat)
            return
        toggle()
        toggled()
    }
    Keys.onReleased: event => event.accepted = event.isAutoRepeat // X11 repeats Space as whole clicks

    indicator: Rectangle {
        y: (box.height - height) / 2
        width: 20
        height: 20
        radius: 6
        color: box.checked ? Style.primary : Style.controlBg
        opacity: box.enabled ? 1 : 0.5
        border.width: box.visualFocus ? 2 : 1
        border.color: box.visualFocus || box.hovered ? Style.controlBorderActive : box.checked ? Style.primary : Style.textMuted

        // The tick: a short and a long stroke.
        Item {
            anchors.centerIn: parent
            anchors.verticalCenterOffset: -1
            visible: box.checked
            width: 6
            height: 10
            rotation: 45

            Rectangle { anchors.right: parent.right; width: 2; height: parent.height; color: Style.buttonText }
            Rectangle { anchors.bottom: parent.bottom; width: parent.width; height: 2; color: Style.buttonText }
        }
    }
    contentItem: AppText {
        leftPadding: box.indicator.width + box.spacing
        text: box.text
        font: box.font
        opacity: box.enabled ? 1 : 0.5
    }
}
