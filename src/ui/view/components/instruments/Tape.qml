import QtQuick
import "../.."

/// A vertical scale that runs past a window with the value in it.
Item {
    id: tape

    property real value: 0
    property bool live: true
    property string title: ""
    /// Between two marks; every other mark has its number.
    property real step: 10
    property real pixelsPerStep: 22
    /// Numbers below this aren't on the scale.
    property real minimum: -Infinity
    /// The marks stand at this edge: left with the scale on the horizon's right side.
    property bool marksAtLeft: false
    readonly property real base: Math.floor(value / (2 * step)) * 2 * step

    implicitWidth: 62

    Rectangle {
        anchors.fill: parent
        color: Style.instrumentFilm
    }

    Item {
        anchors.fill: parent
        anchors.topMargin: 22
        clip: true

        Item {
            y: tape.height / 2 - 22 + (tape.value - tape.base) / tape.step * tape.pixelsPerStep
            visible: tape.live

            Repeater {
                id: marks

                model: 2 * Math.ceil(tape.height / 2 / tape.pixelsPerStep) + 6

                Item {
                    id: mark

                    required property int index
                    readonly property int offset: index - Math.floor(marks.count / 4) * 2 // qmllint disable unqualified
                    readonly property real number: tape.base + offset * tape.step // qmllint disable unqualified

                    y: -offset * tape.pixelsPerStep // qmllint disable unqualified
                    visible: number >= tape.minimum // qmllint disable unqualified

                    Rectangle {
                        x: tape.marksAtLeft ? 0 : tape.width - width // qmllint disable unqualified
                        y: -0.5
                        width: mark.offset % 2 === 0 ? 10 : 6
                        height: 1
                        color: Style.instrumentLine
                    }

                    AppText {
                        visible: mark.offset % 2 === 0
                        x: tape.marksAtLeft ? 15 : tape.width - 15 - width // qmllint disable unqualified
                        y: -height / 2
                        text: mark.number.toFixed(0)
                        color: Style.instrumentLine
                        font.pixelSize: 12
                    }
                }
            }
        }
    }

    Rectangle {
        width: parent.width
        height: 22
        color: Style.instrumentFilm

        AppText {
            anchors.centerIn: parent
            text: tape.title
            color: Style.instrumentLine
            font.pixelSize: 11
        }
    }

    Rectangle {
        y: (tape.height - height) / 2
        width: parent.width
        height: 28
        radius: 6
        color: Style.instrumentBezel
        border.width: 1.5
        border.color: Style.instrumentLine

        AppText {
            objectName: "tapeWindow"
            anchors.fill: parent
            anchors.margins: 3
            text: tape.live ? Format.fixed(tape.value, 0) : "--"
            color: Style.instrumentActive
            font.pixelSize: 16
            font.weight: Font.DemiBold
            horizontalAlignment: Text.AlignHCenter
            fontSizeMode: Text.HorizontalFit
            minimumPixelSize: 10
        }
    }
}
