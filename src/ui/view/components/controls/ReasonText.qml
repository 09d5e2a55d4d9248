import QtQuick
import "../.."

/// Why something went wrong. It can be selected and copied.
TextEdit {
    Accessible.role: Accessible.StaticText
    Accessible.name: text
    Accessible.readOnly: true
    readOnly: true
    selectByMouse: true
    textFormat: TextEdit.PlainText
    wrapMode: TextEdit.Wrap
    color: Style.textError
    selectionColor: Style.controlSelection
    selectedTextColor: Style.textActive
    font.family: Style.fontFamily
    font.pixelSize: 13

    HoverHandler { cursorShape: Qt.IBeamCursor }
}
