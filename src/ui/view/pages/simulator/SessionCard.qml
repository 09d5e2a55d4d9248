import QtQuick
import QtQuick.Layouts
import "../.."

/// 会话状态: what the simulator is at.
Card {
    id: card

    required property var simulator

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

            Figure { label: qsTr("暂停"); value: card.choice(card.simulator?.simPaused, qsTr("已暂停"), qsTr("运行中")) }
            Figure { label: qsTr("地面状态"); value: card.choice(card.simulator?.onGround, qsTr("地面"), qsTr("空中")) }
            Figure { label: qsTr("起落架"); value: card.choice(card.simulator?.gearDown, qsTr("放下"), qsTr("收起")) }
            Figure { label: qsTr("航电"); value: card.choice(card.simulator?.avionicsPowerOn, qsTr("通电"), qsTr("断电")) }
        }

        Item { Layout.fillHeight: true }
    }

    function choice(flag: var, yes: string, no: string): string {
        return flag === undefined || !(simulator?.simulatorConnected ?? false) ? "--" : flag ? yes : no
    }
}
