import QtQuick
import QtQuick.Layouts
import com.tarvonet.backend
import "../.."

/// The session at a glance beside a simulator: stays on top, never takes the keyboard, and is dragged by any place.
FloatingWindow {
    id: mini

    required property VoiceServiceBackend voice
    required property SimulatorBackend simulator

    objectName: "voiceMiniWindow"
    title: qsTr("语音服务")
    flags: Qt.Tool | Qt.FramelessWindowHint | Qt.WindowStaysOnTopHint | Qt.WindowDoesNotAcceptFocus
    width: 280
    height: 150
    Component.onCompleted: place()
    onVisibleChanged: place()

    /// At each opening; from then on it is where it is dragged to.
    function place(): void {
        if (visible && voice) // in one go: set one by one, the second would undo the first
            setGeometry(voice.miniRight - width - 16, voice.miniBottom - height - 16, width, height)
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: Style.spacingMedium
        spacing: Style.spacingSmall

        RowLayout {
            Layout.fillWidth: true
            spacing: Style.spacingSmall

            Rectangle {
                implicitWidth: 10
                implicitHeight: 10
                radius: 5
                color: mini.voice && mini.voice.connected ? Style.statusSuccess : Style.textMuted
            }

            AppText {
                Layout.fillWidth: true
                text: qsTr("语音服务")
                color: Style.instrumentLine
                font.weight: Font.DemiBold
            }

            Lamp {
                objectName: "miniTx"
                dark: true
                text: "TX"
                lit: mini.voice ? mini.voice.pttActive : false
                litColor: Style.statusTransmit
            }

            Lamp {
                objectName: "miniRx"
                dark: true
                text: "RX"
                lit: mini.voice ? mini.voice.receiving : false
            }

            GlassTool {
                objectName: "miniClose"
                text: qsTr("关闭")
                sign: "×"
                onClicked: if (mini.voice) mini.voice.miniMode = false
            }
        }

        RowLayout {
            Layout.fillWidth: true
            spacing: Style.spacingLarge

            Frequency {
                name: "COM1"
                value: mini.simulator ? mini.simulator.com1Frequency : "--"
            }

            Frequency {
                name: "COM2"
                value: mini.simulator ? mini.simulator.com2Frequency : "--"
            }
        }

        Pressable {
            id: talk

            objectName: "miniPtt"
            Layout.fillWidth: true
            Layout.fillHeight: true
            enabled: mini.voice ? mini.voice.connected : false
            text: mini.voice && mini.voice.pttActive ? qsTr("发送中...") : qsTr("PTT 按下")
            onPressed: mini.voice.setPtt(true)
            onReleased: mini.voice.setPtt(false)
            onCanceled: mini.voice.setPtt(false)
            background: Rectangle {
                radius: Style.radiusButton
                color: !talk.enabled ? Style.instrumentGlass : mini.voice.pttActive ? Style.statusTransmit : Style.instrumentGrid
            }
            contentItem: AppText {
                text: talk.text
                color: talk.enabled ? Style.instrumentLine : Style.instrumentDim
                font.weight: Font.DemiBold
                horizontalAlignment: Text.AlignHCenter
            }
        }
    }

    component Frequency: RowLayout {
        property alias name: nameText.text
        property alias value: valueText.text

        Layout.fillWidth: true
        Layout.preferredWidth: 1
        spacing: Style.spacingSmall

        AppText {
            id: nameText

            color: Style.instrumentDim
            font.pixelSize: Style.fontSmall
        }

        AppText {
            id: valueText

            Layout.fillWidth: true
            color: Style.instrumentLine
            font.weight: Font.DemiBold
            fontSizeMode: Text.HorizontalFit
            minimumPixelSize: 10
        }
    }
}
