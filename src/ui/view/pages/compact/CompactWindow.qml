import QtQuick
import QtQuick.Layouts
import com.tarvonet.backend
import "../.."

/// The whole client beside a simulator. It takes the keyboard when it is clicked, and not before.
FloatingWindow {
    id: window

    required property CompactBackend compact
    required property MessagesBackend messages
    required property OverviewBackend overview
    required property SimulatorBackend simulator
    required property SoundsBackend sounds
    required property StatusBackend status
    required property VoiceServiceBackend voice
    required property bool capturing

    objectName: "compactWindow"
    title: qsTr("TARVO 精简视图")
    width: 420
    height: 260
    Component.onCompleted: place()
    onVisibleChanged: place()

    function place(): void {
        if (!compact)
            return
        if (visible) // in one go: set one by one, the second would undo the first
            setGeometry(compact.place.x, compact.place.y, width, height) // qmllint disable
        else
            compact.leftAt(x, y)
    }

    function leave(): void {
        compact.open = false
    }

    ShortcutKeys {
        enabled: !window.capturing
        actions: ["compact", "mute", "compose"]
        onTriggered: action => {
            if (action === "compact")
                window.leave()
            else if (action === "mute")
                window.sounds?.toggle()
            else if (action === "compose")
                line.forceActiveFocus()
        }
    }

    Shortcut {
        enabled: !window.capturing
        sequences: ["Esc"]
        onActivated: window.leave()
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: Style.spacingMedium
        spacing: trouble.visible ? Style.spacingTiny : Style.spacingSmall

        CompactHead {
            Layout.fillWidth: true
            status: window.status
            voice: window.voice
            onLeaveRequested: window.leave()
        }

        CompactRadios {
            Layout.fillWidth: true
            overview: window.overview
            simulator: window.simulator
        }

        CompactTrouble {
            id: trouble

            Layout.fillWidth: true
            visible: shown && !line.noted // the room is enough for one of the two
            status: window.status
        }

        CompactMessage {
            Layout.fillWidth: true
            Layout.fillHeight: true
            compact: window.compact
            sounds: window.sounds
            unread: window.messages ? window.messages.unreadCount : 0
        }

        CompactLine {
            id: line

            Layout.fillWidth: true
            compact: window.compact
        }
    }
}
