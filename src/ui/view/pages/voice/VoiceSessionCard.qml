import QtQuick
import QtQuick.Layouts
import com.tarvonet.backend
import "../.."

/// Under which callsign, sending or receiving, who was heard last, and how loud.
Card {
    id: card

    required property VoiceServiceBackend voice

    ColumnLayout {
        anchors.fill: parent
        spacing: Style.spacingMedium

        RowLayout {
            Layout.fillWidth: true
            spacing: Style.spacingMedium

            ColumnLayout {
                Layout.fillWidth: true
                spacing: 2

                AppText {
                    text: qsTr("呼号")
                    color: Style.textCaption
                    font.pixelSize: Style.fontSmall
                }

                AppText {
                    objectName: "voiceCallsign"
                    Layout.fillWidth: true
                    text: card.voice?.callsign || "--"
                    font.pixelSize: Style.fontHeading
                    font.weight: Font.Bold
                    fontSizeMode: Text.HorizontalFit
                    minimumPixelSize: Style.fontBody
                    elide: Text.ElideRight
                }
            }

            BigLamp {
                objectName: "voiceTx"
                text: "TX"
                lit: card.voice ? card.voice.pttActive : false
                litColor: Style.statusTransmit
            }

            BigLamp {
                objectName: "voiceRx"
                text: "RX"
                lit: card.voice ? card.voice.receiving : false
                litColor: Style.statusSuccess
            }
        }

        RowLayout {
            Layout.fillWidth: true
            spacing: Style.spacingLarge

            Figure {
                label: qsTr("上次发言:")
                value: card.voice ? card.voice.lastReceiveCallsign || "--" : "--"
            }

            Figure {
                label: qsTr("频率:")
                value: card.voice && card.voice.lastReceiveFreq > 0 ? Format.fixed(card.voice.lastReceiveFreq, 3) : "--"
            }
        }

        LevelMeter {
            objectName: "inputMeter"
            Layout.fillWidth: true
            label: qsTr("输入音量")
            db: card.voice ? card.voice.inputDb : silence
            percent: card.voice ? card.voice.inputLevel : 0
        }

        LevelMeter {
            objectName: "outputMeter"
            Layout.fillWidth: true
            label: qsTr("输出音量")
            db: card.voice ? card.voice.outputDb : silence
            percent: card.voice ? card.voice.outputLevel : 0
        }

        Item { Layout.fillHeight: true }
    }

    component BigLamp: Lamp {
        implicitWidth: 72
        implicitHeight: 44
        fontSize: Style.fontValue
    }
}
