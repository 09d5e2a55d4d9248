import QtQuick
import QtQuick.Layouts
import com.tarvonet.backend
import "../.."

/// X-Plane 插件状态: whether traffic can be drawn at all.
Card {
    id: card

    required property SimulatorBackend simulator

    ColumnLayout {
        anchors.fill: parent
        spacing: 10

        SectionTitle {
            Layout.fillWidth: true
            title: qsTr("X-Plane 插件状态")
        }

        GridLayout {
            Layout.fillWidth: true
            columns: 2
            columnSpacing: Style.paddingPage
            rowSpacing: 10

            Figure { label: qsTr("插件状态"); value: card.simulator ? card.simulator.pluginStatusText : "--" }
            Figure { label: qsTr("CSL 状态"); value: card.simulator ? card.simulator.cslStatusText : "--" }
        }

        Figure { label: qsTr("X-Plane 版本"); value: card.simulator ? card.simulator.xplaneVersionText : "--" }

        MappingStatus { simulator: card.simulator }

        Item { Layout.fillHeight: true }
    }
}
