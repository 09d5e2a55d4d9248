import QtQuick
import QtQuick.Layouts
import ".."
import "../components"

/// The flight as it is now; "--" without a simulator.
Card {
    id: strip

    required property var dashboard
    readonly property bool live: dashboard?.simulatorConnected ?? false

    contentPadding: 20

    RowLayout {
        anchors.fill: parent
        spacing: 0

        Reading {
            name: qsTr("航向")
            value: strip.number(strip.dashboard?.heading, v => String((Math.round(v) % 360 + 360) % 360 || 360).padStart(3, "0"))
            unit: "°"
        }

        Separator {}

        Reading {
            name: qsTr("地速")
            value: strip.number(strip.dashboard?.groundSpeed, v => Math.round(v).toFixed(0))
            unit: "kt"
        }

        Separator {}

        Reading {
            name: qsTr("高度")
            value: strip.number(strip.dashboard?.altitude, v => Math.round(v).toLocaleString(Qt.locale("en_US"), "f", 0))
            unit: "ft"
        }

        Separator {}

        Reading {
            Layout.preferredWidth: 220
            name: qsTr("位置")
            value: strip.number(strip.dashboard?.latitude, latitude => strip.number(strip.dashboard?.longitude,
                longitude => strip.angle(latitude, "N", "S", 2) + "  " + strip.angle(longitude, "E", "W", 3)))
            valueSize: 18
        }
    }

    function number(value: var, format: var): string {
        return live && Number.isFinite(value) ? format(value) : "--"
    }

    /// Degrees and minutes, as charts and flight plans have them: N40°04.8'
    function angle(value: real, positive: string, negative: string, digits: int): string {
        const tenths = Math.round(Math.abs(value) * 600)
        const degrees = String(Math.floor(tenths / 600)).padStart(digits, "0")
        const minutes = (tenths % 600 / 10).toFixed(1).padStart(4, "0")
        return (value < 0 ? negative : positive) + degrees + "°" + minutes + "′"
    }

    component Separator: Rectangle {
        Layout.rightMargin: Style.spacingLarge
        implicitWidth: 1
        implicitHeight: 36
        color: Style.divider
    }

    component Reading: ColumnLayout {
        id: reading

        property string name
        property string value
        property string unit: ""
        property int valueSize: Style.fontHeading

        Layout.fillWidth: true
        Layout.preferredWidth: 110
        spacing: 2

        AppText {
            text: reading.name
            color: Style.textSecondary
            font.pixelSize: Style.fontSmall
        }

        RowLayout {
            spacing: Style.spacingTiny

            AppText {
                Layout.preferredHeight: 34
                text: reading.value
                color: strip.live ? Style.textActive : Style.textMuted // qmllint disable unqualified
                font.pixelSize: reading.valueSize
                font.weight: Font.DemiBold
            }

            AppText {
                visible: strip.live // qmllint disable unqualified
                Layout.alignment: Qt.AlignBottom
                bottomPadding: 6
                text: reading.unit
                color: Style.textMuted
                font.pixelSize: Style.fontSmall
            }
        }
    }
}
