import QtQuick
import QtQuick.Layouts
import "../.."

/// A part of a whole: its name, a bar, and the figure.
RowLayout {
    id: bar

    property string label: ""
    property string value: "--"
    property real ratio: 0

    spacing: Style.spacingMedium

    AppText {
        Layout.preferredWidth: 44
        text: bar.label
        color: Style.textCaption
        font.pixelSize: Style.fontSmall
    }

    Rectangle {
        Layout.fillWidth: true
        implicitHeight: 8
        radius: 4
        color: Style.controlBorder

        Rectangle {
            width: parent.width * Math.max(0, Math.min(1, bar.ratio))
            height: parent.height
            radius: 4
            color: Style.controlBorderActive
        }
    }

    AppText {
        Layout.preferredWidth: 40
        horizontalAlignment: Text.AlignRight
        text: bar.value
        font.pixelSize: 13
        font.weight: Font.DemiBold
        fontSizeMode: Text.HorizontalFit
        minimumPixelSize: 10
    }
}
