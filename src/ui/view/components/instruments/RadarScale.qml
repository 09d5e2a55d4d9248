import QtQuick
import com.tarvonet.backend
import "../.."

/// The plot's range, its steps, and the way back to the one that follows the traffic; a corner that the rings leave free.
Column {
    id: scale

    required property SimulatorBackend simulator
    required property int range

    enabled: simulator !== null
    spacing: 2

    Row {
        spacing: 5

        StepButton {
            objectName: "narrowerRange"
            text: "−"
            Accessible.name: qsTr("缩小量程")
            onClicked: scale.simulator.stepPlotRange(-1)
        }

        StepButton {
            objectName: "widerRange"
            text: "+"
            Accessible.name: qsTr("扩大量程")
            onClicked: scale.simulator.stepPlotRange(1)
        }

        StepButton {
            objectName: "freeRange"
            visible: scale.simulator?.plotRangePicked ?? false
            text: qsTr("自动")
            Accessible.name: qsTr("量程随交通变化")
            onClicked: scale.simulator.freePlotRange()
        }
    }

    AppText {
        text: qsTr("量程 %1 NM").arg(scale.range)
        color: Style.instrumentDim
        font.pixelSize: 11
    }

    component StepButton: Pressable {
        id: button

        width: Math.max(22, implicitWidth)
        height: 22
        padding: 0
        horizontalPadding: 5

        contentItem: AppText {
            text: button.text
            color: Style.instrumentLine
            font.pixelSize: 12
            horizontalAlignment: Text.AlignHCenter
            verticalAlignment: Text.AlignVCenter
        }
        background: Rectangle {
            radius: 6
            color: button.hovered || button.down ? Style.instrumentGrid : Style.instrumentBezel
            border.width: Math.max(1, button.ringWidth)
            border.color: button.visualFocus ? button.ringColor : Style.instrumentGrid
        }
    }
}
