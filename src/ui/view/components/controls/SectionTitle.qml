import QtQuick
import QtQuick.Layouts
import "../.."

/// The title of a card, with a quiet note at its right end.
RowLayout {
    property alias title: titleText.text
    property alias note: noteText.text

    spacing: Style.spacingSmall

    AppText {
        id: titleText

        Layout.fillWidth: true
        color: Style.textActive
        font.pixelSize: Style.fontTitle
        font.weight: Font.DemiBold
        elide: Text.ElideRight
    }

    AppText {
        id: noteText

        visible: text.length > 0
        color: Style.textCaption
        font.pixelSize: Style.fontSmall
    }
}
