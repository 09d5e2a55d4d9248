import QtQuick
import QtQuick.Layouts
import com.tarvonet.backend
import "../.."

/// One radio: its display, and the field that tunes it.
ColumnLayout {
    id: unit

    required property SimulatorBackend simulator
    property string title: "COM1"
    property string frequency: "--"
    property bool transmit: false
    property bool receive: false
    property string volume: "--"
    property string example: "121.800"
    /// Whether there is a simulator that can be told.
    property bool live: false

    signal tuned(string frequency)

    spacing: Style.spacingMedium

    Rectangle {
        Layout.fillWidth: true
        implicitHeight: 112
        radius: Style.radiusButton
        color: Style.instrumentBezel

        ColumnLayout {
            anchors.fill: parent
            anchors.margins: Style.spacingMedium
            spacing: 0

            RowLayout {
                AppText {
                    Layout.fillWidth: true
                    text: unit.title
                    color: Style.instrumentDim
                    font.pixelSize: Style.fontSmall
                    font.weight: Font.DemiBold
                }

                AppText {
                    text: qsTr("音量 %1").arg(unit.volume)
                    color: Style.instrumentDim
                    font.pixelSize: 11
                }
            }

            AppText {
                Layout.fillWidth: true
                Layout.fillHeight: true
                text: unit.frequency
                color: Style.instrumentActive
                font.pixelSize: 30
                font.weight: Font.DemiBold
                font.letterSpacing: 1
                fontSizeMode: Text.HorizontalFit
                minimumPixelSize: 12
            }

            RowLayout {
                spacing: Style.spacingSmall

                Lamp {
                    dark: true
                    text: qsTr("发射")
                    lit: unit.transmit
                    litColor: Style.instrumentTransmit
                }

                Lamp {
                    dark: true
                    text: qsTr("接收")
                    lit: unit.receive
                    litColor: Style.instrumentActive
                }
            }
        }
    }

    CheckedEntry {
        id: entry

        Layout.fillWidth: true
        enabled: unit.live
        name: unit.title.toLowerCase()
        placeholder: qsTr("设置 %1，例如 %2").arg(unit.title).arg(unit.example)
        buttonText: qsTr("写入 %1").arg(unit.title)
        verdict: unit.simulator ? unit.simulator.checkFrequency(entry.typed, unit.example) : ({})
        onSubmitted: value => unit.tuned(value)
    }
}
