import QtQuick
import QtQuick.Layouts
import com.tarvonet.backend
import "../.."

/// 模拟器: how the own aircraft flies, who is around, and its radios.
ColumnLayout {
    id: page

    required property SimulatorBackend simulator
    readonly property bool xplane: simulator ? simulator.xplaneMode : false

    spacing: Style.spacingMedium

    Header {
        Layout.fillWidth: true
        title: qsTr("模拟器")

        StatusChip {
            label: page.simulator ? page.simulator.simulatorDisplayName : "--"
            status: page.simulator ? page.simulator.simulatorStatusText : "--"
            tone: page.simulator ? page.simulator.simulatorTone : "quiet"
        }

        CustomButton {
            objectName: "reconnectButton"
            implicitHeight: 32
            leftPadding: Style.spacingMedium
            rightPadding: Style.spacingMedium
            text: qsTr("重新连接")
            font.pixelSize: Style.fontSmall
            onClicked: if (page.simulator) page.simulator.requestReconnect()
        }
    }

    ReasonText {
        objectName: "simulatorFailure"
        Layout.fillWidth: true
        Layout.leftMargin: Style.spacingTiny
        visible: text.length > 0
        text: page.simulator ? page.simulator.simulatorFailureText : ""
    }

    ScrollingColumn {
        objectName: "simulatorScroll"
        Layout.fillWidth: true
        Layout.fillHeight: true

        RadioCard {
            Layout.fillWidth: true
            simulator: page.simulator
        }

        RowLayout {
            Layout.fillWidth: true
            spacing: Style.spacingGrid

            AttitudeCard {
                Layout.fillWidth: true
                Layout.fillHeight: true
                Layout.preferredWidth: 1
                simulator: page.simulator
            }

            TrafficCard {
                Layout.fillWidth: true
                Layout.fillHeight: true
                Layout.preferredWidth: 1
                simulator: page.simulator
            }
        }

        RowLayout {
            Layout.fillWidth: true
            Layout.bottomMargin: Style.paddingPage
            spacing: Style.spacingGrid

            AirframeCard {
                Layout.fillWidth: true
                Layout.fillHeight: true
                Layout.preferredWidth: 1
                simulator: page.simulator
                withEngines: page.xplane
            }

            EngineCard {
                visible: !page.xplane
                Layout.fillWidth: true
                Layout.fillHeight: true
                Layout.preferredWidth: 1
                simulator: page.simulator
            }

            ColumnLayout {
                visible: page.xplane
                Layout.fillWidth: true
                Layout.fillHeight: true
                Layout.preferredWidth: 1
                spacing: Style.spacingGrid

                SessionCard {
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    simulator: page.simulator
                }

                PluginCard {
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    simulator: page.simulator
                }
            }
        }
    }
}
