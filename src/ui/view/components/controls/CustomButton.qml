import QtQuick
import QtQuick.Controls.Basic
import "../.."

/// A push button: filled with the accent colour when `primary`, else quiet.
Button {
    id: button

    property bool primary: false
    property color accentColor: Style.primary

    implicitHeight: Style.controlHeight
    leftPadding: Style.spacingLarge
    rightPadding: Style.spacingLarge
    focusPolicy: Qt.StrongFocus
    font.family: Style.fontFamily
    font.pixelSize: Style.fontBody
    font.weight: primary ? Font.DemiBold : Font.Normal
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

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
                return button.primary ? Style.textMuted : Style.controlBgDisabled
            return button.down ? Qt.darker(base, 1.12) : button.hovered ? Qt.lighter(base, button.primary ? 1.25 : 1.03) : base
        }
        border.width: button.visualFocus ? 2 : 0
        border.color: Style.controlBorderActive

        Behavior on color { ColorAnimation { duration: Style.animationShort } }
    }
    HoverHandler { cursorShape: Qt.PointingHandCursor }
}
