import QtQuick
import QtQuick.Controls.Basic
import "../.."

Slider {
    id: slider

    implicitHeight: 28

    background: Rectangle {
        x: slider.leftPadding
        y: (slider.height - height) / 2
        width: slider.availableWidth
        height: 6
        radius: 3
        color: Style.controlBorder

        Rectangle {
            width: slider.visualPosition * parent.width
            height: parent.height
            radius: 3
            color: slider.enabled ? Style.primary : Style.textMuted
        }
    }
    handle: Rectangle {
        x: slider.leftPadding + slider.visualPosition * (slider.availableWidth - width)
        y: (slider.height - height) / 2
        width: 18
        height: 18
        radius: 9
        color: slider.pressed ? Style.accentSoft : Style.controlBg
        border.width: 2
        border.color: slider.visualFocus ? Style.controlBorderActive : slider.enabled ? Style.primary : Style.textMuted
    }
}
