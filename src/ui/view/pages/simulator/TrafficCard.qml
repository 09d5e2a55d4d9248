import QtQuick
import QtQuick.Layouts
import com.tarvonet.backend
import "../.."

/// Who is around: the plot, and the same aircraft as a list, nearest first.
Card {
    id: card

    required property SimulatorBackend simulator
    readonly property bool msfs: simulator ? simulator.msfsMode : false

    contentPadding: 16

    ColumnLayout {
        anchors.fill: parent
        spacing: Style.spacingMedium

        SectionTitle {
            Layout.fillWidth: true
            title: card.msfs ? qsTr("MSFS 交通快照") : qsTr("交通目标")
            note: card.simulator ? card.simulator.trafficSummary : "--"
        }

        TrafficRadar {
            objectName: "trafficRadar"
            Layout.fillWidth: true
            Layout.preferredHeight: Math.max(290, Math.min(440, card.width * 0.72))
            simulator: card.simulator
        }

        TrafficList {
            objectName: "trafficList"
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.preferredHeight: 6 * rowHeight
            model: card.simulator ? card.simulator.contactRows : null
            pickedCallsign: card.simulator ? card.simulator.pickedCallsign : ""
            onPickedCallsignChanged: if (pickedCallsign !== "") bringIntoView(card.simulator.contactRow(pickedCallsign))
            onStepped: rows => card.simulator.stepPickedContact(rows)
            onPicked: callsign => card.simulator.pickCallsign(callsign)
            emptyText: card.simulator ? qsTr("有目标和本机位置时在此列出") : "--"
        }

        // X-Plane's stands beside its plugin.
        MappingStatus {
            visible: card.msfs
            simulator: card.simulator
        }
    }
}
