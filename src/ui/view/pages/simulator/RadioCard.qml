import QtQuick
import QtQuick.Layouts
import com.tarvonet.backend
import "../.."

/// Both radios and the transponder.
Card {
    id: card

    required property SimulatorBackend simulator
    readonly property bool live: simulator ? simulator.simulatorConnected : false

    /// Without the frequencies, which stand below.
    function radios(com1: bool, com2: bool): string {
        return (com1 ? com2 ? "COM1 / COM2" : "COM1" : com2 ? "COM2" : "") || qsTr("无")
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: Style.spacingMedium

        RowLayout {
            Layout.fillWidth: true
            spacing: Style.spacingSmall

            SectionTitle {
                Layout.fillWidth: true
                title: (card.simulator ? card.simulator.xplaneMode : false) ? qsTr("X-Plane 无线电控制") : qsTr("无线电与应答机")
            }

            StatusChip {
                label: qsTr("发射")
                status: card.simulator ? card.radios(card.simulator.com1TransmitEnabled, card.simulator.com2TransmitEnabled) : "--"
                good: card.simulator ? card.simulator.com1TransmitEnabled || card.simulator.com2TransmitEnabled : false
            }

            StatusChip {
                label: qsTr("监听")
                status: card.simulator ? card.radios(card.simulator.com1ReceiveEnabled, card.simulator.com2ReceiveEnabled) : "--"
                good: card.simulator ? card.simulator.com1ReceiveEnabled || card.simulator.com2ReceiveEnabled : false
            }
        }

        RowLayout {
            Layout.fillWidth: true
            spacing: Style.spacingLarge

            RadioUnit {
                Layout.fillWidth: true
                Layout.preferredWidth: 1
                simulator: card.simulator
                title: "COM1"
                live: card.live
                frequency: card.simulator ? card.simulator.com1Frequency : "--"
                transmit: card.simulator ? card.simulator.com1TransmitEnabled : false
                receive: card.simulator ? card.simulator.com1ReceiveEnabled : false
                volume: card.simulator ? card.simulator.com1Volume : "--"
                example: "121.800"
                onTuned: frequency => { if (card.simulator) card.simulator.requestSetCom1Frequency(frequency) }
            }

            RadioUnit {
                Layout.fillWidth: true
                Layout.preferredWidth: 1
                simulator: card.simulator
                title: "COM2"
                live: card.live
                frequency: card.simulator ? card.simulator.com2Frequency : "--"
                transmit: card.simulator ? card.simulator.com2TransmitEnabled : false
                receive: card.simulator ? card.simulator.com2ReceiveEnabled : false
                volume: card.simulator ? card.simulator.com2Volume : "--"
                example: "124.550"
                onTuned: frequency => { if (card.simulator) card.simulator.requestSetCom2Frequency(frequency) }
            }

            TransponderUnit {
                Layout.fillWidth: true
                Layout.preferredWidth: 1
                simulator: card.simulator
                live: card.live
                code: card.simulator ? card.simulator.transponderCode : "--"
                modeC: card.simulator ? card.simulator.squawkingModeC : false
                ident: card.simulator ? card.simulator.squawkingIdent : false
                onCoded: code => { if (card.simulator) card.simulator.requestSetTransponderCode(code) }
                onModeToggled: if (card.simulator) card.simulator.requestTransponderModeToggle()
                onIdentPressed: if (card.simulator) card.simulator.requestTransponderIdent()
            }
        }
    }
}
