import QtQuick
import QtQuick.Layouts
import ".."
import "../components"

/// How the own aircraft lies and moves: the primary flight display, and every figure under it.
Card {
    id: card

    required property var simulator
    readonly property bool live: simulator?.simulatorConnected ?? false
    readonly property real feetPerMetre: 3.28084
    readonly property real degreesPerRadian: 180 / Math.PI

    contentPadding: 16

    ColumnLayout {
        anchors.fill: parent
        spacing: Style.spacingMedium

        SectionTitle {
            Layout.fillWidth: true
            title: card.simulator?.xplaneMode ?? false ? qsTr("X-Plane 飞行状态") : qsTr("飞行姿态")
        }

        AttitudeIndicator {
            objectName: "attitudeIndicator"
            Layout.fillWidth: true
            Layout.preferredHeight: Math.max(290, Math.min(460, card.width * 0.72))
            live: card.live
            paused: card.simulator?.simPaused ?? false
            pitch: card.simulator?.pitch ?? NaN
            bank: card.simulator?.bank ?? NaN
            heading: card.simulator?.heading ?? NaN
            groundSpeed: card.simulator?.groundSpeed ?? NaN
            altitude: (card.simulator?.altitudeMslM ?? NaN) * card.feetPerMetre
            climb: (card.simulator?.altitudeVelocity ?? NaN) * card.feetPerMetre * 60
        }

        AppText {
            Layout.fillWidth: true
            text: card.simulator?.motionSummary ?? "--"
            color: Style.textSecondary
            font.pixelSize: Style.fontSmall
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
        }

        GridLayout {
            Layout.fillWidth: true
            columns: card.width > 560 ? 3 : 2
            columnSpacing: Style.spacingLarge
            rowSpacing: 6

            Reading { label: qsTr("海高"); value: card.feet(card.simulator?.altitudeMslM, card.feetPerMetre) }
            Reading { label: qsTr("离地"); value: card.feet(card.simulator?.altitudeAglM, card.feetPerMetre) }
            Reading { label: qsTr("压高"); value: card.feet(card.simulator?.altitudePressure, 1) }
            Reading { label: qsTr("垂直速度"); value: card.figure(card.simulator?.altitudeVelocity, 1, " m/s") }
            Reading { label: qsTr("地速"); value: card.figure(card.simulator?.groundSpeed, 0, " kt") }
            Reading { label: qsTr("航向"); value: card.course(card.simulator?.heading) }
            Reading { label: qsTr("俯仰"); value: card.figure(card.simulator?.pitch, 1, "°") }
            Reading { label: qsTr("横滚"); value: card.figure(card.simulator?.bank, 1, "°") }
            Reading { label: qsTr("纬度"); value: card.angle(card.simulator?.latitude, "N", "S", 2) }
            Reading { label: qsTr("经度"); value: card.angle(card.simulator?.longitude, "E", "W", 3) }
            Reading { label: qsTr("纬向速度"); value: card.figure(card.simulator?.latitudeVelocity, 1, " m/s") }
            Reading { label: qsTr("经向速度"); value: card.figure(card.simulator?.longitudeVelocity, 1, " m/s") }
            Reading { label: qsTr("前轮"); value: card.figure(card.simulator?.noseWheelAngle, 1, "°") }
            Reading { label: qsTr("航向变化"); value: card.figure((card.simulator?.headingVelocity ?? NaN) * card.degreesPerRadian, 1, "°/s") }
        }
    }

    function shows(value: var): bool {
        return live && Number.isFinite(value) && Math.abs(value) < 1e7
    }

    function figure(value: var, decimals: int, unit: string): string {
        if (!shows(value))
            return "--"
        const scale = Math.pow(10, decimals)
        return (Math.round(value * scale) / scale + 0).toFixed(decimals) + unit
    }

    function course(value: var): string {
        return shows(value) ? String((Math.round(value) % 360 + 360) % 360 || 360).padStart(3, "0") + "°" : "--"
    }

    function feet(value: var, factor: real): string {
        return shows(value) ? (Math.round(value * factor) + 0).toLocaleString(Qt.locale("en_US"), "f", 0) + " ft" : "--"
    }

    /// Degrees and minutes, as charts have them: N40°04.8'
    function angle(value: var, positive: string, negative: string, digits: int): string {
        if (!shows(value))
            return "--"
        const tenths = Math.round(Math.abs(value) * 600)
        return (value < 0 ? negative : positive) + String(Math.floor(tenths / 600)).padStart(digits, "0") + "°"
            + (tenths % 600 / 10).toFixed(1).padStart(4, "0") + "′"
    }

    component Reading: Figure {
        Layout.fillWidth: true
        Layout.preferredWidth: 1
    }
}
