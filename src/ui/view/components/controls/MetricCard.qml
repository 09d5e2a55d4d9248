import QtQuick
import QtQuick.Layouts
import "../.."

/// One figure with its name. A long value gets smaller before it is cut.
Card {
    id: card

    property string title: ""
    property string value: "--"
    property string unit: ""
    property color accentColor: Style.accent

    contentPadding: 16
    implicitHeight: 104

    CopyHandler { copied: reading.selectedText || `${card.value} ${card.unit}`.trim() }

    ColumnLayout {
        anchors.fill: parent
        spacing: Style.spacingSmall

        RowLayout {
            spacing: Style.spacingSmall

            Rectangle {
                implicitWidth: 4
                implicitHeight: 14
                radius: 2
                color: card.accentColor
            }

            AppText {
                Layout.fillWidth: true
                text: card.title
                color: Style.textCaption
                font.pixelSize: 13
                elide: Text.ElideRight
            }
        }

        RowLayout {
            Layout.fillWidth: true
            Layout.fillHeight: true
            spacing: Style.spacingTiny

            SelectableText {
                id: reading

                Layout.fillWidth: true
                Layout.fillHeight: true
                text: card.value
                ink: Style.textActive
                font.pixelSize: 20
                font.weight: Font.DemiBold
                fontSizeMode: Text.HorizontalFit
                minimumPixelSize: Style.fontSmall
                elide: Text.ElideRight
            }

            AppText {
                visible: card.unit.length > 0
                Layout.alignment: Qt.AlignBottom
                bottomPadding: 6
                text: card.unit
                color: Style.textCaption
                font.pixelSize: Style.fontSmall
            }
        }
    }
}
