import QtQuick
import QtQuick.Layouts
import com.tarvonet.backend
import "../.."

/// The transponder: its code, the two buttons that work it, and the field that sets the code.
ColumnLayout {
    id: unit

    required property SimulatorBackend simulator
    property string code: "--"
    property bool modeC: false
    property bool ident: false
    /// Whether there is a simulator that can be told.
    property bool live: false

    signal coded(string code)
    signal modeToggled()
    signal identPressed()

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
                    text: qsTr("应答机")
                    color: Style.instrumentDim
                    font.pixelSize: Style.fontSmall
                    font.weight: Font.DemiBold
                }

                AppText {
                    text: qsTr("Mode C / Ident")
                    color: Style.instrumentDim
                    font.pixelSize: 11
                }
            }

            AppText {
                Layout.fillWidth: true
                Layout.fillHeight: true
                text: unit.code
                color: Style.instrumentActive
                font.pixelSize: 30
                font.weight: Font.DemiBold
                font.letterSpacing: 4
                fontSizeMode: Text.HorizontalFit
                minimumPixelSize: 12
            }

            RowLayout {
                spacing: Style.spacingSmall

                LampButton {
                    objectName: "modeCButton"
                    enabled: unit.live
                    text: "Mode C"
                    lit: unit.modeC
                    onClicked: unit.modeToggled()
                }

                LampButton {
                    objectName: "identButton"
                    enabled: unit.live
                    text: "Ident"
                    lit: unit.ident
                    onClicked: unit.identPressed()
                }
            }
        }
    }

    CheckedEntry {
        id: entry

        Layout.fillWidth: true
        enabled: unit.live
        name: "transponder"
        placeholder: qsTr("设置应答机，例如 2000")
        buttonText: qsTr("写入应答机")
        verdict: unit.simulator ? unit.simulator.checkTransponderCode(entry.typed) : ({})
        onSubmitted: value => unit.coded(value)
    }
}
