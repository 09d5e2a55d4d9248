import QtQuick
import QtQuick.Layouts
import com.tarvonet.backend
import "../.."

/// 语音设置: devices, the push-to-talk control, gain and tones. All of it takes effect at once.
Card {
    id: card

    required property VoiceSettingsBackend voice
    readonly property var outputs: [qsTr("耳机"), qsTr("扬声器")]

    Component.onCompleted: if (voice) voice.ensureDeviceListLoaded()
    Component.onDestruction: if (voice) voice.stopPttListening()

    ColumnLayout {
        anchors.fill: parent
        spacing: Style.spacingMedium

        SectionTitle {
            Layout.fillWidth: true
            title: qsTr("语音设置")
            note: qsTr("立即生效")
        }

        ChoiceSetting {
            name: "driver"
            label: qsTr("驱动")
            choices: card.voice ? card.voice.driverNames : []
            chosen: card.voice ? card.voice.driverIndex : -1
            onPicked: index => { if (card.voice) card.voice.setDriver(index) }
        }

        ChoiceSetting {
            name: "input"
            label: qsTr("输入设备")
            choices: card.voice ? card.voice.inputDeviceNames : []
            chosen: card.voice ? card.voice.inputIndex : -1
            hint: card.voice ? card.voice.inputHint : ""
            onPicked: index => { if (card.voice) card.voice.setInput(index) }
        }

        ChoiceSetting {
            name: "headphone"
            label: qsTr("耳机输出")
            choices: card.voice ? card.voice.outputDeviceNames : []
            chosen: card.voice ? card.voice.outputHeadphoneIndex : -1
            hint: card.voice ? card.voice.outputHeadphoneHint : ""
            onPicked: index => { if (card.voice) card.voice.setOutputHeadphone(index) }
        }

        ChoiceSetting {
            name: "speaker"
            label: qsTr("扬声器输出")
            choices: card.voice ? card.voice.outputDeviceNames : []
            chosen: card.voice ? card.voice.outputSpeakerIndex : -1
            hint: card.voice ? card.voice.outputSpeakerHint : ""
            onPicked: index => { if (card.voice) card.voice.setOutputSpeaker(index) }
        }

        PttKeySetting {
            label: qsTr("PTT 按键")
            voice: card.voice
        }

        SliderSetting {
            name: "micGain"
            label: qsTr("麦克风增益")
            figure: card.voice ? Format.fixed(value, 1) + " dB" : "--"
            from: -20
            to: 20
            step: 0.5
            value: card.voice ? card.voice.micGain : 0
            onMoved: value => { if (card.voice) card.voice.micGain = value }
        }

        SliderSetting {
            name: "pttVolume"
            label: qsTr("PTT 提示音音量")
            figure: card.voice ? Math.round(value * 100) + " %" : "--"
            step: 0.05
            value: card.voice ? card.voice.pttVolume : 0
            onMoved: value => { if (card.voice) card.voice.pttVolume = value }
        }

        RowLayout {
            spacing: Style.spacingMedium

            FrequencySetting {
                Layout.preferredWidth: 1
                name: "pttPressFreq"
                label: qsTr("PTT 按下提示音频率")
                value: card.voice ? card.voice.pttPressFreq : 0
                onMoved: value => { if (card.voice) card.voice.pttPressFreq = value }
            }

            FrequencySetting {
                Layout.preferredWidth: 1
                name: "pttReleaseFreq"
                label: qsTr("PTT 释放提示音频率")
                value: card.voice ? card.voice.pttReleaseFreq : 0
                onMoved: value => { if (card.voice) card.voice.pttReleaseFreq = value }
            }
        }

        ChoiceSetting {
            name: "pttDevice"
            label: qsTr("PTT 提示音播放设备")
            choices: card.outputs
            chosen: card.voice ? Number(card.voice.pttDevice) : -1
            onPicked: index => { if (card.voice) card.voice.pttDevice = index === 1 }
        }

        SliderSetting {
            name: "conflictVolume"
            label: qsTr("冲突音量")
            figure: card.voice ? Math.round(value * 100) + " %" : "--"
            step: 0.05
            value: card.voice ? card.voice.conflictVolume : 0
            onMoved: value => { if (card.voice) card.voice.conflictVolume = value }
        }

        ChoiceSetting {
            name: "conflictDevice"
            label: qsTr("冲突音播放设备")
            choices: card.outputs
            chosen: card.voice ? Number(card.voice.conflictDevice) : -1
            onPicked: index => { if (card.voice) card.voice.conflictDevice = index === 1 }
        }
    }
}
