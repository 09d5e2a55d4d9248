import QtQuick
import QtQuick.Layouts
import ".."
import "../components"

/// 模拟器: the own aircraft, its radios, and who is around.
ColumnLayout {
    id: page

    required property var simulator

    spacing: Style.spacingMedium

    Header {
        Layout.fillWidth: true
        title: qsTr("模拟器")

        StatusChip {
            label: page.simulator?.simulatorDisplayName ?? "--"
            status: page.simulator?.simulatorStatusText ?? "--"
            good: page.simulator?.simulatorConnected ?? false
        }

        CustomButton {
            objectName: "reconnectButton"
            implicitHeight: 32
            text: qsTr("重新连接")
            font.pixelSize: Style.fontSmall
            onClicked: page.simulator?.requestReconnect()
        }
    }

    AppText {
        Layout.fillHeight: true
        text: page.simulator?.trafficSummary ?? "--"
    }
}
