import QtQuick
import QtQuick.Controls.Basic
import "../.."

/// Several lines of plain text. Takes an input method.
TextArea {
    id: area

    padding: Style.spacingMedium
    textFormat: TextEdit.PlainText
    wrapMode: TextEdit.Wrap
    selectByMouse: true
    color: Style.textPrimary
    placeholderTextColor: Style.textMuted
    selectionColor: Style.controlSelection
    selectedTextColor: Style.textActive
    font.family: Style.fontFamily
    font.pixelSize: Style.fontBody

    background: Rectangle {
        radius: Style.radiusButton
        color: area.enabled ? Style.controlBg : Style.controlBgDisabled
        border.width: area.activeFocus ? 2 : 1
        border.color: area.activeFocus ? Style.controlBorderActive : Style.controlBorder
    }
}
