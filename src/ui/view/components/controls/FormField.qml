import QtQuick
import QtQuick.Layouts
import "../.."

/// A caption above one control.
ColumnLayout {
    property alias label: caption.text

    spacing: Style.spacingTiny

    AppText {
        id: caption

        Layout.fillWidth: true
        color: Style.textCaption
        font.pixelSize: Style.fontSmall
        elide: Text.ElideRight
    }
}
