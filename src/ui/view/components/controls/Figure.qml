import QtQuick
import QtQuick.Layouts
import "../.."

/// One reading on one line: its name at the left, the value at the right. In a grid all are equally wide.
RowLayout {
    id: figure

    property string label: ""
    property string value: "--"

    Layout.fillWidth: true
    Layout.preferredWidth: 1
    spacing: Style.spacingSmall

    CopyHandler { copied: reading.selectedText || figure.value }

    AppText {
        text: figure.label
        color: Style.textCaption
        font.pixelSize: Style.fontSmall
    }

    SelectableText {
        id: reading

        Layout.fillWidth: true
        horizontalAlignment: Text.AlignRight
        text: figure.value
        font.pixelSize: 13
        font.weight: Font.DemiBold
        fontSizeMode: Text.HorizontalFit
        minimumPixelSize: 10
        elide: Text.ElideRight
    }
}
