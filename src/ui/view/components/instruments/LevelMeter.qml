import QtQuick
import QtQuick.Layouts
import "../.."

/// A level in dB of full scale, from -96 to 0, with a mark at the highest of late: it holds for a second, then falls.
ColumnLayout {
    id: meter

    property string label: ""
    property real db: silence
    property real percent: 0
    readonly property real silence: -96
    property real shownDb: silence
    property real readDb: silence
    property real readPercent: 0
    property real peakDb: silence

    function ratio(level: real): real {
        return Math.max(0, Math.min(1, 1 - level / silence))
    }

    spacing: Style.spacingTiny
    Accessible.role: Accessible.ProgressBar
    Accessible.name: label + " " + reading.text

    // Levels come fifty times a second, and each change paints the window anew: ten are enough for the eye, five
    // for a figure.
    Timer {
        property bool isReadNow: false
        property int held: 0 ///< for how many tenths of a second the mark has stood

        interval: 100
        repeat: true
        triggeredOnStart: true
        running: meter.db > meter.silence || meter.peakDb > meter.silence
        onTriggered: {
            meter.shownDb = meter.db
            isReadNow = !isReadNow
            if (isReadNow) {
                meter.readDb = meter.db
                meter.readPercent = meter.percent
            }
            held = meter.db >= meter.peakDb ? 0 : held + 1
            meter.peakDb = held === 0 ? meter.db : held > 10 ? Math.max(meter.silence, meter.peakDb - 6) : meter.peakDb
        }
    }

    RowLayout {
        Layout.fillWidth: true

        AppText {
            Layout.fillWidth: true
            text: meter.label
            color: Style.textCaption
            font.pixelSize: Style.fontSmall
            elide: Text.ElideRight
        }

        AppText {
            id: reading

            objectName: "levelReading"
            text: qsTr("%1 %  %2 dB").arg(Math.round(meter.readPercent)).arg(Format.fixed(meter.readDb, 1))
            color: Style.textCaption
            font.pixelSize: Style.fontSmall
        }
    }

    Rectangle {
        id: glass

        Layout.fillWidth: true
        implicitHeight: 22
        radius: 6
        color: Style.instrumentGlass

        Item { // shows as much of the whole scale's colours as is lit
            x: 3
            y: 3
            width: (glass.width - 6) * meter.ratio(meter.shownDb)
            height: glass.height - 6
            clip: true

            Rectangle {
                width: glass.width - 6
                height: parent.height
                radius: 3
                gradient: Gradient {
                    orientation: Gradient.Horizontal
                    GradientStop { position: 0; color: Style.statusSuccess }
                    GradientStop { position: 0.7; color: Style.statusSuccess }
                    GradientStop { position: 0.87; color: Style.statusPending }
                    GradientStop { position: 1; color: Style.statusError }
                }
            }
        }

        Rectangle {
            visible: meter.peakDb > meter.silence
            x: 3 + (glass.width - 8) * meter.ratio(meter.peakDb)
            y: 3
            width: 2
            height: glass.height - 6
            color: Style.instrumentLine
        }
    }

    Item {
        id: ticks

        Layout.fillWidth: true
        implicitHeight: 12

        Repeater {
            model: [-96, -72, -48, -24, -12, 0]

            AppText {
                required property int modelData

                x: Math.max(0, Math.min(ticks.width - width, ticks.width * meter.ratio(modelData) - width / 2)) // qmllint disable unqualified
                text: modelData
                color: Style.textCaption
                font.pixelSize: 10
            }
        }
    }
}
