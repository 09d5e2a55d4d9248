import QtQuick
import QtQuick.Layouts
import com.tarvonet.backend
import "../.."

/// The tuned frequencies, active and standby, and which radio sends and hears.
Card {
    id: card

    required property VoiceServiceBackend voice

    ColumnLayout {
        anchors.fill: parent
        spacing: Style.spacingMedium

        SectionTitle {
            Layout.fillWidth: true
            title: qsTr("无线电频率")
        }

        Radio {
            objectName: "voiceCom1"
            name: "COM1"
            frequency: card.voice ? card.voice.com1Freq : "--"
            transmits: card.voice ? card.voice.com1TX : false
            receives: card.voice ? card.voice.com1RX : false
            volume: card.voice ? card.voice.com1Volume : 0
            onVolumeMoved: value => { if (card.voice) card.voice.com1Volume = value }
        }

        Rectangle {
            Layout.fillWidth: true
            implicitHeight: 1
            color: Style.divider
        }

        Radio {
            objectName: "voiceCom2"
            name: "COM2"
            frequency: card.voice ? card.voice.com2Freq : "--"
            transmits: card.voice ? card.voice.com2TX : false
            receives: card.voice ? card.voice.com2RX : false
            volume: card.voice ? card.voice.com2Volume : 0
            onVolumeMoved: value => { if (card.voice) card.voice.com2Volume = value }
        }

        Item { Layout.fillHeight: true }
    }

    component Radio: ColumnLayout {
        id: radio

        property string name: ""
        property string frequency: "--"
        property bool transmits: false
        property bool receives: false
        property real volume: 0

        signal volumeMoved(real value)

        Layout.fillWidth: true
        spacing: Style.spacingSmall

        RowLayout {
            Layout.fillWidth: true
            spacing: Style.spacingSmall

            AppText {
                text: radio.name
                color: Style.textCaption
                font.pixelSize: Style.fontSmall
            }

            AppText {
                Layout.fillWidth: true
                text: radio.frequency
                font.weight: Font.DemiBold
                fontSizeMode: Text.HorizontalFit
                minimumPixelSize: 10
                elide: Text.ElideRight
            }

            Lamp {
                text: "TX"
                lit: radio.transmits
                litColor: Style.statusTransmit
            }

            Lamp {
                text: "RX"
                lit: radio.receives
            }
        }

        RowLayout {
            Layout.fillWidth: true
            spacing: Style.spacingSmall

            AppText {
                text: qsTr("音量")
                color: Style.textCaption
                font.pixelSize: Style.fontSmall
            }

            CustomSlider {
                Layout.fillWidth: true
                value: radio.volume
                onMoved: radio.volumeMoved(value)
                Accessible.name: radio.name + qsTr("音量")
            }

            AppText {
                Layout.preferredWidth: 40
                horizontalAlignment: Text.AlignRight
                text: qsTr("%1 %").arg(Math.round(radio.volume * 100))
                font.pixelSize: Style.fontSmall
            }
        }
    }
}
