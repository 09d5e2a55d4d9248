import QtQuick
import QtQuick.Layouts
import com.tarvonet.backend
import "../.."

/// The engines side by side: a green ring turns on with each one that runs.
ColumnLayout {
    id: bay

    required property SimulatorBackend simulator
    readonly property var engines: simulator ? simulator.engineStates : []

    spacing: Style.spacingMedium

    RowLayout {
        Layout.alignment: Qt.AlignHCenter
        visible: bay.engines.length > 0
        spacing: Style.spacingMedium

        Repeater {
            model: bay.engines.length

            ColumnLayout {
                id: engine

                required property int index
                readonly property var figures: bay.engines[index] ?? null // qmllint disable unqualified
                readonly property bool running: figures?.running ?? false

                spacing: 6

                Rectangle {
                    Layout.alignment: Qt.AlignHCenter
                    implicitWidth: 58
                    implicitHeight: 58
                    radius: 29
                    color: Style.instrumentBezel
                    border.width: 4
                    border.color: engine.running ? Style.statusSuccess : Style.controlBorder

                    AppText {
                        anchors.centerIn: parent
                        text: engine.figures?.label ?? "--"
                        color: engine.running ? Style.instrumentActive : Style.instrumentDim
                        font.pixelSize: 12
                        font.weight: Font.DemiBold
                    }
                }

                Lamp {
                    Layout.alignment: Qt.AlignHCenter
                    text: qsTr("反推")
                    lit: engine.figures?.reversing ?? false
                    litColor: Style.statusPending
                }
            }
        }
    }

    AppText {
        Layout.fillWidth: true
        text: bay.simulator ? bay.simulator.engineSummary : "--"
        color: Style.textCaption
        font.pixelSize: Style.fontSmall
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.Wrap
    }
}
