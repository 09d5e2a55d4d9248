import QtQuick
import "../.."

/// Text of the pages. Always plain: what comes from outside is shown as it is, markup included.
Text {
    textFormat: Text.PlainText
    color: Style.textPrimary
    font.family: Style.fontFamily
    font.pixelSize: Style.fontBody
    verticalAlignment: Text.AlignVCenter
}
