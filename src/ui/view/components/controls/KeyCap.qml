import QtQuick
import "../.."

/// A key, or keys that are pressed together.
Rectangle {
    property alias text: label.text

    implicitWidth: Math.max(implicitHeight, label.implicitWidth + 14)
    implicitHeight: 24
    radius: 6
    color: Style.accentSoft
    border.width: 1
    border.color: Style.controlBorder

    AppText {
        id: label

        anchors.centerIn: parent
        color: Style.textCaption
        font.pixelSize: Style.fontSmall
        font.weight: Font.DemiBold
    }
}
