import QtQuick
import com.tarvonet.backend
import ".."

/// Sidebar and one section at a time. A section is built anew at each switch and shows what the view models hold.
Item {
    id: main

    required property DashboardBackend dashboard
    required property SimulatorBackend simulator
    required property ServerBackend server
    required property MessagesBackend messages
    required property VoiceServiceBackend voice
    required property SettingsBackend settings
    required property VoiceSettingsBackend voiceSettings
    required property StatusBackend status
    required property SoundsBackend sounds
    required property TourBackend tour
    required property LeaveBackend leave
    required property OverviewBackend overview
    property string currentSection: "dashboard"
    /// Another window stands for this one, so that no section is seen.
    property bool away: false
    readonly property string seenSection: away ? "" : currentSection

    signal logoutRequested()
    signal helpRequested()
    signal compactRequested()

    Component.onCompleted: if (status) status.setCurrentSection(seenSection)
    onSeenSectionChanged: if (status) status.setCurrentSection(seenSection)

    Connections {
        target: main.status

        function onSectionRequested(section: string): void {
            main.currentSection = section
        }
    }

    /// What a shortcut stands for.
    function perform(action: string): void {
        if (sidebar.sections.some(section => section.key === action)) {
            currentSection = action
        } else if (["compose", "lastSession", "search"].includes(action)) {
            if (action === "lastSession")
                messages?.openLastSession()
            currentSection = "messages"
            const opened = page.item as MessagesPage
            action === "search" ? opened?.search() : opened?.write()
        }
    }

    Rectangle {
        anchors.fill: parent
        gradient: Gradient {
            GradientStop { position: 0; color: Style.bgGradientStart }
            GradientStop { position: 0.4; color: Style.bgGradientMiddle }
            GradientStop { position: 1; color: Style.bgGradientEnd }
        }
    }

    Image {
        anchors.fill: parent
        source: "qrc:/resources/theme/noise.png"
        fillMode: Image.Tile
        opacity: 0.035
    }

    Sidebar {
        id: sidebar

        width: 252
        height: parent.height
        dashboard: main.dashboard
        status: main.status
        sounds: main.sounds
        currentSection: main.currentSection
        unreadCount: main.messages ? main.messages.unreadCount : 0
        sections: [
            { key: "dashboard", title: qsTr("总览") },
            { key: "simulator", title: qsTr("模拟器") },
            { key: "server", title: qsTr("服务器") },
            { key: "voice", title: qsTr("语音服务") },
            { key: "messages", title: qsTr("消息") },
            { key: "settings", title: qsTr("设置") }
        ]
        onSectionRequested: key => main.currentSection = key
        onLogoutRequested: main.logoutRequested()
        onHelpRequested: main.helpRequested()
        onCompactRequested: main.compactRequested()
    }

    NoticeBanner {
        id: banner

        objectName: "noticeBanner"
        anchors.left: sidebar.right
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.margins: 16
        status: main.status
    }

    Loader {
        id: page

        objectName: "sectionLoader"
        anchors.left: sidebar.right
        anchors.right: parent.right
        anchors.top: banner.shown ? banner.bottom : parent.top
        anchors.bottom: parent.bottom
        anchors.margins: 16
        focus: true
        sourceComponent: ({
            simulator: simulatorSection,
            server: serverSection,
            voice: voiceSection,
            messages: messagesSection,
            settings: settingsSection
        })[main.currentSection] ?? overviewSection
    }

    TourCard {
        anchors.left: sidebar.right
        tour: main.tour
        step: 2
        target: sidebar.itemOf("server", sidebar.items.count)
        margin: Style.spacingLarge
        title: qsTr("连接网络")
        text: qsTr("在“服务器”页填写呼号和机型，按下连接，管制和机友就能看到你。")
    }

    TourCard {
        anchors.left: sidebar.right
        tour: main.tour
        step: 3
        target: sidebar.itemOf("messages", sidebar.items.count)
        margin: Style.spacingLarge
        title: qsTr("收发消息")
        text: qsTr("频率上的文字、私聊和管制席位都在这里。按 F1 可以看到全部快捷键。")
    }

    Component {
        id: overviewSection

        DashboardOverviewPage {
            dashboard: main.dashboard // qmllint disable unqualified
            overview: main.overview // qmllint disable unqualified
            unreadCount: main.messages ? main.messages.unreadCount : 0 // qmllint disable unqualified
            onSectionRequested: key => main.currentSection = key // qmllint disable unqualified
            server: main.server // qmllint disable unqualified
        }
    }

    Component {
        id: simulatorSection

        SimulatorPage { simulator: main.simulator } // qmllint disable unqualified
    }

    Component {
        id: serverSection

        ServerPage {
            server: main.server // qmllint disable unqualified
            leave: main.leave // qmllint disable unqualified
        }
    }

    Component {
        id: voiceSection

        VoiceServicePage { voice: main.voice } // qmllint disable unqualified
    }

    Component {
        id: messagesSection

        MessagesPage {
            messages: main.messages // qmllint disable unqualified
            simulator: main.simulator // qmllint disable unqualified
        }
    }

    Component {
        id: settingsSection

        SettingsPage {
            settings: main.settings // qmllint disable unqualified
            voice: main.voiceSettings // qmllint disable unqualified
            sounds: main.sounds // qmllint disable unqualified
        }
    }
}
