import QtQuick
import QtQml.Models
import com.tarvonet.backend
import "pages"

/// The main window's content. The one place that names the context properties: pages get their view models handed
/// down, and live without them ("--").
Rectangle {
    id: rootWindow

    // qmllint disable unqualified
    readonly property DashboardBackend dashboard: typeof dashboardBackend === "undefined" ? null : dashboardBackend
    readonly property SimulatorBackend simulator: typeof simulatorBackend === "undefined" ? null : simulatorBackend
    readonly property ServerBackend server: typeof serverBackend === "undefined" ? null : serverBackend
    readonly property MessagesBackend messages: typeof messagesBackend === "undefined" ? null : messagesBackend
    readonly property VoiceServiceBackend voice: typeof voiceBackend === "undefined" ? null : voiceBackend
    readonly property SettingsBackend settings: typeof settingsBackend === "undefined" ? null : settingsBackend
    readonly property VoiceSettingsBackend voiceSettings: typeof voiceSettingsBackend === "undefined" ? null : voiceSettingsBackend
    readonly property StatusBackend status: typeof statusBackend === "undefined" ? null : statusBackend
    readonly property CompactBackend compact: typeof compactBackend === "undefined" ? null : compactBackend
    readonly property TourBackend tour: typeof tourBackend === "undefined" ? null : tourBackend
    readonly property SoundsBackend sounds: typeof soundsBackend === "undefined" ? null : soundsBackend
    readonly property LeaveBackend leave: typeof leaveBackend === "undefined" ? null : leaveBackend
    readonly property OverviewBackend overview: typeof overviewBackend === "undefined" ? null : overviewBackend
    // qmllint enable unqualified
    /// A key is being captured for push-to-talk: none is a shortcut meanwhile.
    readonly property bool capturing: voiceSettings ? voiceSettings.pttListening : false

    signal logoutRequested()

    width: 1280
    height: 800
    color: Style.windowBackground

    function askToLogOut(): void {
        if (leave)
            leave.logOut()
        else
            logoutRequested()
    }

    Connections {
        target: rootWindow.leave

        function onLogOutConfirmed(): void {
            rootWindow.logoutRequested()
        }
        function onDisconnectConfirmed(): void {
            rootWindow.server.requestDisconnect()
        }
    }

    function showCompact(): void {
        if (compact)
            compact.open = true
    }

    function perform(action: string): void {
        if (action === "help")
            shortcutSheet.open()
        else if (action === "mute")
            sounds?.toggle()
        else if (action === "compact")
            showCompact()
        else
            (shell.item as MainDashboard)?.perform(action)
    }

    ShortcutKeys {
        enabled: !rootWindow.capturing
        onTriggered: action => rootWindow.perform(action)
    }

    LeaveDialog {
        leave: rootWindow.leave
        beneath: shell
    }

    ShortcutSheet {
        id: shortcutSheet

        beneath: shell
    }

    Loader {
        id: shell

        anchors.fill: parent
        focus: true
        sourceComponent: rootWindow.dashboard && rootWindow.dashboard.modePicked ? mainDashboard : modeSelection
    }

    Component {
        id: modeSelection

        ModeSelection {
            dashboard: rootWindow.dashboard // qmllint disable unqualified
            tour: rootWindow.tour // qmllint disable unqualified
            onLogoutRequested: rootWindow.askToLogOut() // qmllint disable unqualified
        }
    }

    Component {
        id: mainDashboard

        MainDashboard {
            dashboard: rootWindow.dashboard // qmllint disable unqualified
            simulator: rootWindow.simulator // qmllint disable unqualified
            server: rootWindow.server // qmllint disable unqualified
            messages: rootWindow.messages // qmllint disable unqualified
            voice: rootWindow.voice // qmllint disable unqualified
            settings: rootWindow.settings // qmllint disable unqualified
            voiceSettings: rootWindow.voiceSettings // qmllint disable unqualified
            status: rootWindow.status // qmllint disable unqualified
            sounds: rootWindow.sounds // qmllint disable unqualified
            tour: rootWindow.tour // qmllint disable unqualified
            leave: rootWindow.leave // qmllint disable unqualified
            overview: rootWindow.overview // qmllint disable unqualified
            away: rootWindow.compact ? rootWindow.compact.open : false // qmllint disable unqualified
            onLogoutRequested: rootWindow.askToLogOut() // qmllint disable unqualified
            onHelpRequested: shortcutSheet.open() // qmllint disable unqualified
            onCompactRequested: rootWindow.showCompact() // qmllint disable unqualified
        }
    }

    Instantiator { // unlike a Loader it doesn't tie the window to this one, with which it would be minimised
        property bool wanted: rootWindow.voice ? rootWindow.voice.miniMode : false

        active: false
        onWantedChanged: active = true // kept from then on: a window is hidden at once, and destroyed later

        VoiceMiniWindow {
            visible: rootWindow.voice ? rootWindow.voice.miniMode : false // qmllint disable unqualified
            voice: rootWindow.voice // qmllint disable unqualified
            simulator: rootWindow.simulator // qmllint disable unqualified
        }
    }

    Instantiator {
        property bool wanted: rootWindow.compact ? rootWindow.compact.open : false

        active: false
        onWantedChanged: active = true

        CompactWindow {
            visible: rootWindow.compact ? rootWindow.compact.open : false // qmllint disable unqualified
            compact: rootWindow.compact // qmllint disable unqualified
            capturing: rootWindow.capturing // qmllint disable unqualified
            messages: rootWindow.messages // qmllint disable unqualified
            overview: rootWindow.overview // qmllint disable unqualified
            simulator: rootWindow.simulator // qmllint disable unqualified
            sounds: rootWindow.sounds // qmllint disable unqualified
            status: rootWindow.status // qmllint disable unqualified
            voice: rootWindow.voice // qmllint disable unqualified
        }
    }
}
