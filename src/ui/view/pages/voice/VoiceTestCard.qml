import QtQuick
import QtQuick.Layouts
import com.tarvonet.backend
import "../.."

/// Tries microphone and outputs without a server. The microphone is heard while the key is held.
Card {
    id: card

    required property VoiceServiceBackend voice
    readonly property bool free: voice ? voice.canTest : false
    readonly property bool micTesting: voice ? voice.micTesting : false
    readonly property bool conflictTesting: voice ? voice.conflictTesting : false

    ColumnLayout {
        anchors.fill: parent
        spacing: Style.spacingMedium

        SectionTitle {
            Layout.fillWidth: true
            title: qsTr("设备测试")
        }

        CustomButton {
            objectName: "micTestButton"
            Layout.fillWidth: true
            enabled: card.free
            primary: card.micTesting
            text: card.micTesting ? qsTr("停止麦克风测试") : qsTr("麦克风测试")
            onClicked: card.micTesting ? card.voice.stopMicTest() : card.voice.startMicTest()
        }

        AppText {
            Layout.fillWidth: true
            visible: card.micTesting
            text: qsTr("按住 PTT 说话，即可听到自己的声音")
            color: Style.textCaption
            font.pixelSize: Style.fontSmall
            wrapMode: Text.Wrap
        }

        RowLayout {
            Layout.fillWidth: true
            spacing: Style.spacingSmall

            AppText {
                text: qsTr("输出到")
                color: Style.textCaption
                font.pixelSize: Style.fontSmall
            }

            CustomComboBox {
                objectName: "loopbackBox"
                Layout.fillWidth: true
                enabled: card.free
                model: [qsTr("耳机"), qsTr("扬声器")]
                currentIndex: card.voice && card.voice.loopbackTarget ? 1 : 0
                onActivated: index => { if (card.voice) card.voice.loopbackTarget = index === 1 }
                Accessible.name: qsTr("输出到")
            }
        }

        CustomButton {
            objectName: "conflictTestButton"
            Layout.fillWidth: true
            enabled: card.free
            primary: card.conflictTesting
            text: card.conflictTesting ? qsTr("停止冲突音测试") : qsTr("冲突音测试")
            onClicked: card.conflictTesting ? card.voice.stopPlayConflict() : card.voice.startPlayConflict()
        }

        AppText {
            objectName: "testNote"
            Layout.fillWidth: true
            visible: card.voice !== null && !card.free
            text: qsTr("语音服务连接中，无法测试")
            color: Style.textCaption
            font.pixelSize: Style.fontSmall
            wrapMode: Text.Wrap
        }

        Item { Layout.fillHeight: true }
    }
}
