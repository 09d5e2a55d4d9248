import QtQuick
import QtQuick.Layouts
import com.tarvonet.backend
import "../.."

/// Both radios with who is tuned there, and the transponder.
RowLayout {
    id: radios

    required property OverviewBackend overview
    required property SimulatorBackend simulator
    readonly property bool live: simulator ? simulator.simulatorConnected : false

    spacing: Style.spacingSmall

    Tile {
        title: "COM1"
        sending: radios.live && radios.simulator.com1TransmitEnabled
        value: radios.overview ? radios.overview.com1 : "--"
        detail: radios.overview ? radios.overview.com1Station : ""
    }

    Tile {
        title: "COM2"
        sending: radios.live && radios.simulator.com2TransmitEnabled
        value: radios.overview ? radios.overview.com2 : "--"
        detail: radios.overview ? radios.overview.com2Station : ""
    }

    Tile {
        title: qsTr("应答机")
        value: radios.overview ? radios.overview.transponder : "--"
        detailed: false

        RowLayout {
            spacing: Style.spacingTiny

            LampButton {
                objectName: "compactModeC"
                enabled: radios.live
                text: "Mode C"
                small: true
                lit: radios.live && radios.simulator.squawkingModeC
                onClicked: radios.simulator.requestTransponderModeToggle()
            }

            LampButton {
                objectName: "compactIdent"
                enabled: radios.live
                text: "Ident"
                small: true
                lit: radios.live && radios.simulator.squawkingIdent
                onClicked: radios.simulator.requestTransponderIdent()
            }
        }
    }

    component Tile: Rectangle {
        id: tile

        property string title: ""
        property string value: "--"
        property string detail: ""
        property bool detailed: true
        property bool sending: false
        default property alias foot: column.data

        Layout.fillWidth: true
        Layout.preferredWidth: 1
        implicitHeight: 76
        radius: Style.radiusButton
        color: Style.instrumentGlass

        ColumnLayout {
            id: column

            anchors.fill: parent
            anchors.leftMargin: Style.spacingMedium
            anchors.rightMargin: Style.spacingSmall
            anchors.topMargin: 7
            anchors.bottomMargin: 7
            spacing: 0

            RowLayout {
                spacing: 6

                AppText {
                    text: tile.title
                    color: Style.instrumentDim
                    font.pixelSize: 11
                }

                AppText {
                    visible: tile.sending
                    text: qsTr("发射")
                    color: Style.instrumentTransmit
                    font.pixelSize: 11
                    font.weight: Font.DemiBold
                }
            }

            AppText {
                Layout.fillWidth: true
                Layout.fillHeight: true
                text: tile.value
                color: Style.instrumentActive
                font.pixelSize: 20
                font.weight: Font.DemiBold
                font.letterSpacing: 1
            }

            AppText {
                Layout.fillWidth: true
                visible: tile.detailed
                text: tile.detail || " " // keeps the figures of both radios on one line
                color: Style.instrumentLine
                font.pixelSize: Style.fontSmall
                elide: Text.ElideRight
            }
        }
    }
}
