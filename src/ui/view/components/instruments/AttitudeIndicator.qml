import QtQuick
import "../.."

/// The primary flight display: artificial horizon, bank scale, ground speed, altitude and heading. Nothing in it moves
/// by itself: it is drawn again only when a value changes.
Rectangle {
    id: display

    /// Degrees, knots, feet, feet per minute; what isn't finite, or absurd, is shown as absent.
    property real pitch: 0
    property real bank: 0
    property real heading: 0
    property real groundSpeed: 0
    property real altitude: 0
    property real climb: 0
    property bool live: false
    property bool paused: false
    readonly property bool upright: live && known(pitch) && known(bank)
    readonly property real tapeWidth: 60
    readonly property real centre: (height - 2 * bezel) / 2
    readonly property real bezel: 5

    implicitWidth: 320
    implicitHeight: 320
    radius: 18
    color: Style.instrumentBezel
    Accessible.role: Accessible.Graphic
    Accessible.name: qsTr("飞行仪表：%1").arg(summary())

    /// False for what no aeroplane has.
    function known(value: real): bool {
        return Math.abs(value) < 1e6
    }

    function sane(value: real): real {
        return known(value) ? value : 0
    }

    function climbText(): string {
        return (climb >= 5 ? "+" : "") + Format.fixed(10 * Math.round(climb / 10), 0) + " fpm"
    }

    /// What is to be read off it, on one line.
    function summary(): string {
        if (!upright)
            return qsTr("无姿态数据")
        const figure = value => known(value) ? Format.fixed(value, 0) : "--"
        return qsTr("俯仰 %1°，横滚 %2°，航向 %3，地速 %4 节，海高 %5 英尺").arg(figure(pitch)).arg(figure(bank))
            .arg(known(heading) ? Format.course(heading) : "--").arg(figure(groundSpeed)).arg(figure(altitude))
    }

    Item {
        id: glass

        anchors.fill: parent
        anchors.margins: display.bezel
        clip: true

        Horizon {
            anchors.fill: parent
            objectName: "horizon"
            pitch: display.upright ? Math.max(-90, Math.min(90, display.pitch)) : 0
            bank: display.upright ? display.bank % 360 : 0
            topKeep: Math.max(24, height / 2 - bankScale.radius + 18) // the ladder stays under the arc
            bottomKeep: 44
            sideKeep: display.tapeWidth
            rungSize: Math.min(38, bankScale.radius * 0.27)
            opacity: display.upright ? 1 : 0.35
        }

        BankScale {
            id: bankScale

            x: glass.width / 2
            y: glass.height / 2
            radius: Math.min(glass.height / 2 - 26, (glass.width / 2 - display.tapeWidth) / 0.87 - 10)
            bank: display.upright ? display.bank % 360 : 0
        }

        // The aeroplane: two wings and the nose, always in the middle.
        Repeater {
            model: [-1, 1]

            Item {
                required property int modelData

                x: glass.width / 2 // qmllint disable unqualified
                y: glass.height / 2 // qmllint disable unqualified
                transform: Scale { xScale: modelData } // qmllint disable unqualified

                Rectangle { x: 23; y: -3.5; width: 8; height: 16; radius: 2; color: Style.instrumentBezel }
                Rectangle { x: 23; y: -3.5; width: 44; height: 7; radius: 2; color: Style.instrumentBezel }
                Rectangle { x: 25; y: -2; width: 4; height: 13; radius: 1; color: Style.instrumentOwn }
                Rectangle { x: 25; y: -2; width: 40; height: 4; radius: 1; color: Style.instrumentOwn }
            }
        }

        Rectangle {
            x: (glass.width - width) / 2
            y: (glass.height - height) / 2
            width: 8
            height: 8
            radius: 2
            color: Style.instrumentOwn
            border.width: 1.5
            border.color: Style.instrumentBezel
        }

        Tape {
            objectName: "speedTape"
            width: display.tapeWidth
            height: parent.height
            title: qsTr("地速 kt")
            value: display.sane(display.groundSpeed)
            live: display.live && display.known(display.groundSpeed)
            minimum: 0
        }

        Tape {
            objectName: "altitudeTape"
            anchors.right: parent.right
            width: display.tapeWidth
            height: parent.height
            title: qsTr("海高 ft")
            value: display.sane(display.altitude)
            live: display.live && display.known(display.altitude)
            step: 100
            marksAtLeft: true
        }

        HeadingTape {
            anchors.bottom: parent.bottom
            x: display.tapeWidth
            width: parent.width - 2 * display.tapeWidth
            heading: (display.sane(display.heading) % 360 + 360) % 360
            live: display.live && display.known(display.heading)
        }

        Rectangle {
            anchors.right: parent.right
            anchors.bottom: parent.bottom
            width: display.tapeWidth
            height: 24
            color: Style.instrumentBezel
            visible: display.live && display.known(display.climb)

            AppText {
                anchors.fill: parent
                anchors.margins: 2
                text: display.climbText()
                color: Style.instrumentTraffic
                font.pixelSize: 11
                horizontalAlignment: Text.AlignHCenter
                fontSizeMode: Text.HorizontalFit
                minimumPixelSize: 10
            }
        }

        Rectangle {
            anchors.horizontalCenter: parent.horizontalCenter
            y: glass.height / 2 + 26
            width: notice.implicitWidth + 24
            height: 28
            radius: 14
            visible: notice.text.length > 0
            color: Style.instrumentBezel
            border.width: 1
            border.color: display.upright ? Style.statusPending : Style.instrumentGrid

            AppText {
                id: notice

                anchors.centerIn: parent
                text: !display.upright ? qsTr("无姿态数据") : display.paused ? qsTr("已暂停") : ""
                color: display.upright ? Style.statusPending : Style.instrumentDim
                font.pixelSize: 13
                font.weight: Font.DemiBold
            }
        }
    }

    // Rounds the glass: a frame of the bezel's colour over its square corners.
    Rectangle {
        anchors.fill: parent
        color: "transparent"
        radius: parent.radius
        border.width: display.bezel + 2
        border.color: parent.color
    }
}
