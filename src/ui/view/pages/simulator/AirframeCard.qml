import QtQuick
import QtQuick.Layouts
import com.tarvonet.backend
import "../.."

/// Surfaces and lights; with `withEngines` the engines too.
Card {
    id: card

    required property SimulatorBackend simulator
    property bool withEngines: false

    ColumnLayout {
        anchors.fill: parent
        spacing: Style.spacingMedium

        SectionTitle {
            Layout.fillWidth: true
            title: card.withEngines ? qsTr("灯光与发动机") : qsTr("机体与灯光")
        }

        RatioBar {
            Layout.fillWidth: true
            label: qsTr("襟翼")
            value: card.simulator ? card.simulator.flapsLabel : "--"
            ratio: card.simulator ? card.simulator.flapsRatio : 0
        }

        RatioBar {
            Layout.fillWidth: true
            label: qsTr("减速板")
            value: card.simulator ? card.simulator.speedbrakeLabel : "--"
            ratio: card.simulator ? card.simulator.speedbrakeRatio : 0
        }

        Flow {
            Layout.fillWidth: true
            spacing: 6

            Lamp { text: "Beacon"; lit: card.simulator ? card.simulator.beaconOn : false; litColor: Style.statusError }
            Lamp { text: "Landing"; lit: card.simulator ? card.simulator.landingLightsOn : false; litColor: Style.statusPending }
            Lamp { text: "Taxi"; lit: card.simulator ? card.simulator.taxiLightsOn : false; litColor: Style.statusPending }
            Lamp { text: "Nav"; lit: card.simulator ? card.simulator.navLightsOn : false; litColor: Style.statusSuccess }
            Lamp { text: "Strobe"; lit: card.simulator ? card.simulator.strobesOn : false; litColor: Style.controlBorderActive }
        }

        Loader {
            Layout.fillWidth: true
            visible: active
            active: card.withEngines
            sourceComponent: EngineBay { simulator: card.simulator } // qmllint disable unqualified
        }

        Item { Layout.fillHeight: true }
    }
}
