import QtQuick
import QtQuick.Layouts
import com.tarvonet.backend
import "../.."

/// 映射状态: how the models for other aircraft stand. As many lines as it takes.
RowLayout {
    id: mapping

    required property SimulatorBackend simulator

    Layout.fillWidth: true
    spacing: Style.spacingSmall

    AppText {
        Layout.alignment: Qt.AlignTop
        text: qsTr("映射状态")
        color: Style.textCaption
        font.pixelSize: Style.fontSmall
    }

    AppText {
        objectName: "mappingStatus"
        Layout.fillWidth: true
        horizontalAlignment: Text.AlignRight
        text: mapping.simulator ? mapping.simulator.trafficMappingStatusText : "--"
        font.pixelSize: 13
        font.weight: Font.DemiBold
        wrapMode: Text.Wrap
    }
}
