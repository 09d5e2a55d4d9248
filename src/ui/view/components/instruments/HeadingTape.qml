import QtQuick
import "../.."

/// A horizontal compass: the heading in a window, 90 degrees of the card around it.
Item {
    id: tape

    property real heading: 0
    property bool live: true
    readonly property real pixelsPerDegree: width / 90
    readonly property int base: Math.floor(heading / 10) * 10

    implicitHeight: 40

    Rectangle {
        anchors.fill: parent
        color: Style.instrumentFilm
    }

    Item {
        anchors.fill: parent
        clip: true

        Item {
            x: tape.width / 2 - (tape.heading - tape.base) * tape.pixelsPerDegree
            visible: tape.live

            Repeater {
                model: 13

                Item {
                    id: mark

                    required property int index
                    readonly property int degrees: ((tape.base + (index - 6) * 10) % 360 + 360) % 360 // qmllint disable unqualified

                    readonly property real fromMiddle: x + (tape.base - tape.heading) * tape.pixelsPerDegree // qmllint disable unqualified

                    x: (index - 6) * 10 * tape.pixelsPerDegree // qmllint disable unqualified

                    Rectangle {
                        x: -0.75
                        width: 1.5
                        height: mark.degrees % 30 === 0 ? 10 : 6
                        color: Style.instrumentLine
                    }

                    AppText {
                        // Not where the window stands.
                        visible: mark.degrees % 30 === 0 && Math.abs(mark.fromMiddle) > 44
                        x: -width / 2
                        y: 13
                        text: ({ 0: "N", 90: "E", 180: "S", 270: "W" })[mark.degrees] ?? String(mark.degrees / 10).padStart(2, "0")
                        color: mark.degrees % 90 === 0 ? Style.instrumentOwn : Style.instrumentLine
                        font.pixelSize: 13
                        font.weight: mark.degrees % 90 === 0 ? Font.DemiBold : Font.Normal
                    }
                }
            }
        }
    }

    Rectangle {
        x: (tape.width - width) / 2
        y: 5
        width: 58
        height: 28
        radius: 6
        color: Style.instrumentBezel
        border.width: 1.5
        border.color: Style.instrumentLine

        AppText {
            objectName: "headingWindow"
            anchors.centerIn: parent
            text: tape.live ? Format.course(tape.heading) + "°" : "--"
            color: Style.instrumentActive
            font.pixelSize: 16
            font.weight: Font.DemiBold
        }
    }
}
