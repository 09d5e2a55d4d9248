import QtQuick
import QtQuick.Layouts
import com.tarvonet.backend
import "../.."

/// 语音服务: the voice session, who speaks, and whether the devices work.
ColumnLayout {
    id: page

    required property VoiceServiceBackend voice
    readonly property bool connected: voice ? voice.connected : false

    spacing: Style.spacingMedium

    Header {
        Layout.fillWidth: true
        title: qsTr("语音服务")

        StatusChip {
            objectName: "voiceState"
            status: page.voice ? page.voice.connectionStateText : "--"
            tone: page.voice ? page.voice.connectionTone : "quiet"
        }

        CustomButton {
            objectName: "voiceConnectButton"
            visible: !page.connected
            implicitHeight: 32
            leftPadding: Style.spacingMedium
            rightPadding: Style.spacingMedium
            primary: true
            text: qsTr("连接语音服务器")
            font.pixelSize: Style.fontSmall
            onClicked: if (page.voice) page.voice.connectToVoiceServer()
        }

        CustomButton {
            objectName: "voiceMiniButton"
            implicitHeight: 32
            leftPadding: Style.spacingMedium
            rightPadding: Style.spacingMedium
            text: qsTr("缩小")
            font.pixelSize: Style.fontSmall
            onClicked: if (page.voice) page.voice.miniMode = true
        }
    }

    ReasonText {
        objectName: "voiceFailure"
        Layout.fillWidth: true
        visible: text.length > 0
        text: page.voice ? page.voice.failureText : ""
        horizontalAlignment: TextEdit.AlignRight // under the button
    }

    ScrollingColumn {
        objectName: "voiceScroll"
        Layout.fillWidth: true
        Layout.fillHeight: true

        RowLayout {
            Layout.fillWidth: true
            spacing: Style.spacingGrid

            VoiceSessionCard {
                Layout.fillWidth: true
                Layout.fillHeight: true
                Layout.preferredWidth: 3
                voice: page.voice
            }

            VoiceTestCard {
                Layout.fillWidth: true
                Layout.fillHeight: true
                Layout.preferredWidth: 2
                voice: page.voice
            }
        }

        Card {
            Layout.fillWidth: true

            ColumnLayout {
                anchors.fill: parent
                spacing: Style.spacingMedium

                SectionTitle {
                    Layout.fillWidth: true
                    title: qsTr("最近一分钟")
                }

                SpeechTimeline {
                    objectName: "speechTimeline"
                    Layout.fillWidth: true
                    voice: page.voice
                }
            }
        }

        RowLayout {
            Layout.fillWidth: true
            Layout.bottomMargin: Style.paddingPage
            spacing: Style.spacingGrid

            VoiceRadioCard {
                Layout.fillWidth: true
                Layout.fillHeight: true
                Layout.preferredWidth: 1
                voice: page.voice
            }

            Card {
                Layout.fillWidth: true
                Layout.fillHeight: true
                Layout.preferredWidth: 1

                ColumnLayout {
                    anchors.fill: parent
                    spacing: Style.spacingMedium

                    SectionTitle {
                        Layout.fillWidth: true
                        title: qsTr("事件日志")
                    }

                    VoiceEventList {
                        objectName: "voiceEvents"
                        Layout.fillWidth: true
                        Layout.fillHeight: true
                        Layout.minimumHeight: 150
                        model: page.voice ? page.voice.eventRows : null
                    }
                }
            }
        }
    }
}
