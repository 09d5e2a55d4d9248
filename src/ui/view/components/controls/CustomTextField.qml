import QtQuick
import QtQuick.Controls.Basic
import "../.."

/// One line of plain text. Takes an input method; who submits it calls Qt.inputMethod.commit() first.
TextField {
    id: field

    implicitHeight: Style.controlHeight
    leftPadding: Style.spacingMedium
    rightPadding: Style.spacingMedium
    selectByMouse: true
    color: enabled ? Style.textPrimary : Style.textSecondary
    placeholderTextColor: Style.textMuted
    selectionColor: Style.controlSelection
    selectedTextColor: Style.textActive
    font.family: Style.fontFamily
    font.pixelSize: Style.fontBody

    background: Rectangle {
        radius: Style.radiusButton
        color: field.enabled ? Style.controlBg : Style.controlBgDisabled
        border.width: field.activeFocus ? 2 : 1
        border.color: field.activeFocus ? Style.controlBorderActive : Style.controlBorder
    }
}
