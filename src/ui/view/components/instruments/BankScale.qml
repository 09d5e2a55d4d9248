import QtQuick
import "../.."

/// An arc of 60 degrees to either side, with a pointer that keeps to the sky.
Item {
    id: arc

    property real bank: 0
    property real radius: 100

    // The top of a circle, cut off at 60 degrees.
    Item {
        x: -arc.radius
        y: -arc.radius
        width: 2 * arc.radius
        height: arc.radius / 2
        clip: true

        Rectangle {
            width: 2 * arc.radius
            height: 2 * arc.radius
            radius: arc.radius
            color: "transparent"
            border.width: 1.5
            border.color: Style.instrumentLine
        }
    }

    Repeater {
        model: [-60, -45, -30, -20, -10, 0, 10, 20, 30, 45, 60]

        Item {
            id: mark

            required property int modelData
            readonly property real size: modelData % 30 === 0 ? 12 : 7

            rotation: modelData

            Rectangle {
                x: -width / 2
                y: -arc.radius - mark.size // qmllint disable unqualified
                width: mark.modelData === 0 ? 3 : 1.5
                height: mark.size
                color: Style.instrumentLine
                antialiasing: true
            }
        }
    }

    Item {
        rotation: -arc.bank

        // An arrow head: two strokes that meet at the arc.
        Repeater {
            model: [-1, 1]

            Rectangle {
                required property int modelData

                x: -width / 2
                y: -arc.radius + 2 // qmllint disable unqualified
                width: 3.5
                height: 15
                radius: 1.5
                color: Style.instrumentOwn
                antialiasing: true
                transformOrigin: Item.Top
                rotation: 27 * modelData
            }
        }
    }
}
