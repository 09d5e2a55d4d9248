import QtQuick
import com.tarvonet.backend
import "../.."

/// The last minute of both radios, now at the right: a bar for each that spoke, with his callsign.
Rectangle {
    id: line

    required property VoiceServiceBackend voice
    readonly property real now: voice ? voice.timelineNow : 0
    readonly property real spanMs: 60000
    readonly property real labelWidth: 52
    readonly property real laneHeight: 30
    readonly property real trackWidth: width - labelWidth - Style.spacingMedium

    function xAt(ms: real): real {
        return labelWidth + trackWidth * Math.max(0, Math.min(1, 1 - (now - ms) / spanMs))
    }

    implicitHeight: 2 * laneHeight + 28
    radius: Style.radiusButton
    color: Style.instrumentGlass
    clip: true

    Repeater {
        model: ["COM1", "COM2"]

        Item {
            required property string modelData
            required property int index

            y: 6 + index * line.laneHeight // qmllint disable unqualified
            width: line.width // qmllint disable unqualified
            height: line.laneHeight // qmllint disable unqualified

            AppText {
                x: Style.spacingMedium
                height: parent.height
                text: parent.modelData
                color: Style.instrumentDim
                font.pixelSize: 11
            }

            Rectangle {
                x: line.labelWidth // qmllint disable unqualified
                y: parent.height / 2
                width: line.trackWidth // qmllint disable unqualified
                height: 1
                color: Style.instrumentGrid
            }
        }
    }

    Repeater {
        model: [60, 45, 30, 15, 0]

        AppText {
            required property int modelData

            x: Math.max(line.labelWidth, Math.min(line.width - width - 6, // qmllint disable unqualified
                        line.labelWidth + line.trackWidth * (1 - modelData / 60) - width / 2)) // qmllint disable unqualified
            y: line.height - height - 4 // qmllint disable unqualified
            text: modelData === 0 ? qsTr("现在") : qsTr("%1 秒前").arg(modelData)
            color: Style.instrumentDim
            font.pixelSize: 10
        }
    }

    Repeater {
        model: line.voice ? line.voice.speechRows : null

        Rectangle {
            id: bar

            required property int radio
            required property string callsign
            required property bool own
            required property real fromMs
            required property real toMs

            objectName: "speechBar"
            x: line.xAt(fromMs) // qmllint disable unqualified
            y: 6 + radio * line.laneHeight + 4 // qmllint disable unqualified
            width: Math.max(4, line.xAt(toMs) - x) // qmllint disable unqualified
            height: line.laneHeight - 8 // qmllint disable unqualified
            radius: 4
            color: own ? Style.statusError : Style.instrumentActive
            Accessible.role: Accessible.StaticText
            Accessible.name: callsign

            AppText {
                visible: parent.width > implicitWidth + 8
                anchors.centerIn: parent
                text: bar.callsign
                color: Style.instrumentBezel
                font.pixelSize: 11
                font.weight: Font.DemiBold
            }
        }
    }
}
