import QtQuick
import "../.."

/// A push button: filled with the accent colour when `primary`, else quiet.
Pressable {
    id: button

    property bool primary: false
    property color accentColor: Style.primary
    property color disabledColor: primary ? Style.textMuted : Style.controlBgDisabled

    implicitHeight: Style.controlHeight
    leftPadding: Style.spacingLarge
    rightPadding: Style.spacingLarge
    font.family: Style.fontFamily
    font.pixelSize: Style.fontBody
    font.weight: primary ? Font.DemiBold : Font.Normal

    contentItem: AppText {
        text: button.text
        font: button.font
        color: !button.primary ? button.accentColor : Style.buttonText
        opacity: button.enabled ? 1 : 0.6
        horizontalAlignment: Text.AlignHCenter
        fontSizeMode: Text.HorizontalFit
        minimumPixelSize: 10
    }
    background: Rectangle {
        radius: Style.radiusButton
        color: {
            const base = button.primary ? button.accentColor : Style.accentSoft
            if (!button.enabled)
                return button.disabledColor
            return button.down ? Qt.darker(base, 1.12) : button.hovered ? Qt.lighter(base, button.primary ? 1.25 : 1.03) : base
        }
        border.width: button.ringWidth
        border.color: button.ringColor

        Behavior on color { ColorAnimation { duration: Style.animationShort } }
    }
}
