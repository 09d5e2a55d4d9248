import QtQuick
import "../.."

/// The ring of a compass, drawn around its origin and turned so that `heading` is up.
Item {
    id: rose

    property real heading: 0
    property real radius: 100

    rotation: -heading

    Rectangle {
        x: -rose.radius
        y: -rose.radius
        width: 2 * rose.radius
        height: 2 * rose.radius
        radius: rose.radius
        color: "transparent"
        border.width: 1.5
        border.color: Style.instrumentDim
    }

    Repeater {
        model: 36

        Item {
            id: mark

            required property int index
            readonly property bool labelled: index % 3 === 0

            rotation: 10 * index

            Rectangle {
                x: -width / 2
                y: -rose.radius // qmllint disable unqualified
                width: mark.labelled ? 2 : 1
                height: mark.labelled ? 9 : 5
                color: mark.labelled ? Style.instrumentLine : Style.instrumentDim
                antialiasing: true
            }

            AppText {
                visible: mark.labelled
                x: -width / 2
                y: -rose.radius + 9 // qmllint disable unqualified
                text: ({ 0: "N", 9: "E", 18: "S", 27: "W" })[mark.index] ?? String(mark.index)
                color: mark.index === 0 ? Style.instrumentOwn : mark.index % 9 === 0 ? Style.instrumentLine : Style.instrumentDim
                font.pixelSize: mark.index % 9 === 0 ? 13 : 10
                font.weight: mark.index % 9 === 0 ? Font.DemiBold : Font.Normal
            }
        }
    }
}
