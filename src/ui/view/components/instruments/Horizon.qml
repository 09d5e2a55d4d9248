import QtQuick
import "../.."

/// Sky, ground and pitch ladder behind a rectangular window. Degrees; nose up and right wing down are positive.
Item {
    id: horizon

    property real pitch: 0
    property real bank: 0
    /// The ladder keeps out of these strips, where tapes and scales stand.
    property real topKeep: 0
    property real bottomKeep: 0
    property real sideKeep: 0
    /// Half the length of a numbered rung.
    property real rungSize: 38
    readonly property real pixelsPerDegree: height / 48
    /// Far enough that no corner shows an end, whatever the attitude.
    readonly property real reach: 90 * pixelsPerDegree + width + height

    clip: true

    Item {
        anchors.centerIn: parent
        rotation: -horizon.bank

        Item {
            y: horizon.pitch * horizon.pixelsPerDegree

            Rectangle {
                x: -horizon.reach
                y: -horizon.reach
                width: 2 * horizon.reach
                height: horizon.reach
                color: Style.skyHigh
            }

            Rectangle {
                x: -horizon.reach
                width: 2 * horizon.reach
                height: horizon.reach
                color: Style.groundFar
            }

            // Haze towards the horizon, on both sides of it.
            Rectangle {
                x: -horizon.reach
                y: -height
                width: 2 * horizon.reach
                height: 26 * horizon.pixelsPerDegree
                gradient: Gradient {
                    GradientStop { position: 0; color: Style.skyHigh }
                    GradientStop { position: 1; color: Style.skyLow }
                }
            }

            Rectangle {
                x: -horizon.reach
                width: 2 * horizon.reach
                height: 26 * horizon.pixelsPerDegree
                gradient: Gradient {
                    GradientStop { position: 0; color: Style.groundNear }
                    GradientStop { position: 1; color: Style.groundFar }
                }
            }

            Rectangle {
                x: -horizon.reach
                y: -1
                width: 2 * horizon.reach
                height: 2
                color: Style.instrumentLine
                antialiasing: true
            }
        }
    }

    Item {
        anchors.fill: parent
        anchors.topMargin: horizon.topKeep
        anchors.bottomMargin: horizon.bottomKeep
        anchors.leftMargin: horizon.sideKeep
        anchors.rightMargin: horizon.sideKeep
        clip: true

        Item {
            x: horizon.width / 2 - horizon.sideKeep
            y: horizon.height / 2 - horizon.topKeep
            rotation: -horizon.bank

            Item {
                y: horizon.pitch * horizon.pixelsPerDegree

                Repeater {
                    model: 71 // from 87.5 down to -87.5 in steps of 2.5

                    Item {
                        id: rung

                        required property int index
                        readonly property real degrees: 87.5 - 2.5 * index
                        /// Pixels over the middle, as long as the wings are level.
                        readonly property real above: (degrees - horizon.pitch) * horizon.pixelsPerDegree // qmllint disable unqualified
                        readonly property bool labelled: degrees % 10 === 0
                        readonly property real half: horizon.rungSize * (labelled ? 1 : degrees % 5 === 0 ? 0.55 : 0.28) // qmllint disable unqualified

                        y: -degrees * horizon.pixelsPerDegree // qmllint disable unqualified
                        visible: degrees !== 0 && above < horizon.height / 2 - horizon.topKeep - 6 // qmllint disable unqualified
                            && -above < horizon.height / 2 - horizon.bottomKeep // qmllint disable unqualified

                        Rectangle {
                            x: -rung.half
                            y: -0.75
                            width: 2 * rung.half
                            height: 1.5
                            color: Style.instrumentLine
                            antialiasing: true
                        }

                        Repeater {
                            model: rung.labelled ? [-1, 1] : []

                            AppText {
                                required property int modelData

                                x: modelData < 0 ? -rung.half - width - 5 : rung.half + 5 // qmllint disable unqualified
                                y: -height / 2
                                text: Math.abs(rung.degrees).toFixed(0) // qmllint disable unqualified
                                color: Style.instrumentLine
                                font.pixelSize: 11
                                style: Text.Outline // legible on a bright sky, too
                                styleColor: Style.imageFilm
                            }
                        }
                    }
                }
            }
        }
    }
}
