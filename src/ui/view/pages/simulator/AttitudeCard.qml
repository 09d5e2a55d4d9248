import QtQuick
import QtQuick.Layouts
import com.tarvonet.backend
import "../.."

/// How the own aircraft lies and moves: the primary flight display, and every figure under it once.
Card {
    id: card

    required property SimulatorBackend simulator
    readonly property bool live: simulator ? simulator.simulatorConnected : false
    readonly property real degreesPerRadian: 180 / Math.PI

    contentPadding: 16

    ColumnLayout {
        anchors.fill: parent
        spacing: Style.spacingMedium

        SectionTitle {
            Layout.fillWidth: true
            title: (card.simulator ? card.simulator.xplaneMode : false) ? qsTr("X-Plane 飞行状态") : qsTr("飞行姿态")
        }

        AttitudeIndicator {
            objectName: "attitudeIndicator"
            Layout.fillWidth: true
            Layout.preferredHeight: Math.max(290, Math.min(440, card.width * 0.72))
            live: card.live
            paused: card.simulator ? card.simulator.simPaused : false
            pitch: card.simulator ? card.simulator.pitch : NaN
            bank: card.simulator ? card.simulator.bank : NaN
            heading: card.simulator ? card.simulator.heading : NaN
            groundSpeed: card.simulator ? card.simulator.groundSpeed : NaN
            altitude: (card.simulator ? card.simulator.altitudeMslM : NaN) * Format.feetPerMetre
            climb: (card.simulator ? card.simulator.altitudeVelocity : NaN) * Format.feetPerMetre * 60
        }

        GridLayout {
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.maximumHeight: Infinity // what is over goes between the rows
            columns: card.width > 560 ? 3 : 2
            columnSpacing: Style.spacingLarge
            rowSpacing: 6

            Figure { label: qsTr("海高"); value: card.feet((card.simulator ? card.simulator.altitudeMslM : NaN) * Format.feetPerMetre) }
            Figure { label: qsTr("离地"); value: card.feet((card.simulator ? card.simulator.altitudeAglM : NaN) * Format.feetPerMetre) }
            Figure { label: qsTr("压高"); value: card.feet(card.simulator ? card.simulator.altitudePressure : NaN) }
            Figure { label: qsTr("垂直速度"); value: card.figure(card.simulator ? card.simulator.altitudeVelocity : NaN, 1, " m/s") }
            Figure { label: qsTr("地速"); value: card.figure(card.simulator ? card.simulator.groundSpeed : NaN, 0, " kt") }
            Figure { label: qsTr("航向"); value: card.text(card.simulator ? card.simulator.heading : NaN, v => Format.course(v) + "°") }
            Figure { label: qsTr("俯仰"); value: card.figure(card.simulator ? card.simulator.pitch : NaN, 1, "°") }
            Figure { label: qsTr("横滚"); value: card.figure(card.simulator ? card.simulator.bank : NaN, 1, "°") }
            Figure { label: qsTr("纬度"); value: card.text(card.simulator ? card.simulator.latitude : NaN, Format.latitude) }
            Figure { label: qsTr("经度"); value: card.text(card.simulator ? card.simulator.longitude : NaN, Format.longitude) }
            Figure { label: qsTr("纬向速度"); value: card.figure(card.simulator ? card.simulator.latitudeVelocity : NaN, 1, " m/s") }
            Figure { label: qsTr("经向速度"); value: card.figure(card.simulator ? card.simulator.longitudeVelocity : NaN, 1, " m/s") }
            Figure { label: qsTr("前轮"); value: card.figure(card.simulator ? card.simulator.noseWheelAngle : NaN, 1, "°") }
            Figure { label: qsTr("航向变化"); value: card.figure((card.simulator ? card.simulator.headingVelocity : NaN) * card.degreesPerRadian, 1, "°/s") }
        }
    }

    /// "--" for what isn't known, or absurd.
    function text(value: var, format: var): string {
        return live && Number.isFinite(value) && Math.abs(value) < 1e7 ? format(value) : "--"
    }

    function figure(value: var, decimals: int, unit: string): string {
        return text(value, v => Format.fixed(v, decimals) + unit)
    }

    function feet(value: var): string {
        return text(value, v => Format.grouped(v) + " ft")
    }
}
