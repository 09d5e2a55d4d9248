import QtQuick
import QtQuick.Layouts
import "../.."

/// What is wrong with the field above; takes no room when nothing is.
AppText {
    Layout.fillWidth: true
    visible: text.length > 0
    color: Style.textError
    font.pixelSize: Style.fontSmall
    wrapMode: Text.Wrap
}
