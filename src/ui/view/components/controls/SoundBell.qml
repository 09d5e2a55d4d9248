import QtQuick
import com.tarvonet.backend
import "../.."

/// Switches the sounds, and lights up with each of them.
SidebarTool {
    id: tool

    required property SoundsBackend sounds
    readonly property bool on: sounds ? sounds.on : true
    readonly property bool audible: sounds ? sounds.audible : true

    objectName: "soundBell"
    Accessible.name: audible ? qsTr("提示音：开") : on ? qsTr("提示音：音量为零") : qsTr("提示音：关")
    tip: Shortcuts.tip("mute")
    onClicked: sounds?.toggle()

    Rectangle {
        id: glow

        anchors.fill: parent
        radius: width / 2
        color: Style.toneColor(tool.sounds ? tool.sounds.signTone : "")
        opacity: 0
    }

    SequentialAnimation {
        id: flash

        loops: 3

        NumberAnimation { target: glow; property: "opacity"; to: 1; duration: Style.animationShort }
        PauseAnimation { duration: 200 }
        NumberAnimation { target: glow; property: "opacity"; to: 0; duration: 320 }
    }

    Bell {
        anchors.centerIn: parent
        color: glow.opacity > 0.5 ? Style.buttonText : tool.audible ? Style.textCaption : Style.textMuted
        silent: !tool.audible
    }

    Connections {
        target: tool.sounds

        function onSignShown(): void {
            flash.restart()
        }
    }
}
