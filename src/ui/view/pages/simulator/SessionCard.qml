import QtQuick
import QtQuick.Layouts
import com.tarvonet.backend
import "../.."

/// 会话状态: what the simulator is at.
Card {
    id: card

    required property SimulatorBackend simulator

    ColumnLayout {
        anchors.fill: parent
        spacing: 10

        SectionTitle {
            Layout.fillWidth: true
            title: qsTr("会话状态")
        }

        GridLayout {
            Layout.fillWidth: true
            columns: 2
            columnSpacing: Style.paddingPage
            rowSpacing: 10

            Figure { label: qsTr("暂停"); value: card.choice(card.simulator ? card.simulator.simPaused : false, qsTr("已暂停"), qsTr("运行中")) }
            Figure { label: qsTr("地面状态"); value: card.choice(card.simulator ? card.simulator.onGround : false, qsTr("地面"), qsTr("空中")) }
            Figure { label: qsTr("起落架"); value: card.choice(card.simulator ? card.simulator.gearDown : false, qsTr("放下"), qsTr("收起")) }
            Figure { label: qsTr("航电"); value: card.choice(card.simulator ? card.simulator.avionicsPowerOn : false, qsTr("通电"), qsTr("断电")) }
        }

        Item { Layout.fillHeight: true }
    }

    function choice(flag: bool, yes: string, no: string): string {
        return simulator && simulator.simulatorConnected ? flag ? yes : no : "--"
    }
}
