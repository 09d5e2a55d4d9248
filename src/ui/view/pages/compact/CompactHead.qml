import QtQuick
import QtQuick.Layouts
import com.tarvonet.backend
import "../.."

/// How the connections are, who speaks, and the way back.
RowLayout {
    id: head

    required property StatusBackend status
    required property VoiceServiceBackend voice
    readonly property bool voiceThere: voice ? voice.connected : false

    signal leaveRequested()

    spacing: Style.spacingMedium

    Repeater {
        model: head.status ? head.status.lineRows : null

        Row {
            id: line

            required property string section
            required property string name
            required property string word
            required property string tone

            objectName: "compactStatus-" + section
            Accessible.role: Accessible.StaticText
            Accessible.name: qsTr("%1：%2").arg(name).arg(word)
            spacing: 6

            StatusDot {
                anchors.verticalCenter: parent.verticalCenter
                tone: line.tone
            }

            AppText {
                Accessible.ignored: true
                text: line.name
                color: line.tone === "quiet" ? Style.instrumentDim : Style.instrumentLine
                font.pixelSize: Style.fontSmall
            }
        }
    }

    Item { Layout.fillWidth: true }

    Lamp {
        objectName: "compactTx"
        visible: head.voiceThere
        dark: true
        text: "TX"
        lit: head.voiceThere && head.voice.pttActive
        litColor: Style.instrumentTransmit
    }

    Lamp {
        objectName: "compactRx"
        visible: head.voiceThere
        Layout.leftMargin: -6
        dark: true
        text: "RX"
        lit: head.voiceThere && head.voice.receiving
    }

    GlassTool {
        objectName: "compactLeave"
        text: qsTr("回到主窗口")
        tip: text + "　Esc"
        onClicked: head.leaveRequested()

        CompactSign {
            anchors.centerIn: parent
            color: Style.instrumentLine
        }
    }
}
