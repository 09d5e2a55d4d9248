import QtQuick
import QtQuick.Layouts
import com.tarvonet.backend
import "../.."

/// Brand, sections, and who is signed in.
Rectangle {
    id: sidebar

    required property DashboardBackend dashboard
    required property StatusBackend status
    required property SoundsBackend sounds
    property string currentSection: "dashboard"
    /// Rows of { key, title }.
    property var sections: []
    /// Shown at the item "messages".
    property int unreadCount: 0
    /// Room for two connections that failed, down to the least height of the window.
    readonly property bool compact: height < 780

    readonly property alias items: sectionItems

    signal sectionRequested(string key)
    signal logoutRequested()
    signal helpRequested()
    signal compactRequested()

    /// The section's item, once there are `count` of them.
    function itemOf(key: string, count: int): Item {
        const index = sections.findIndex(section => section.key === key)
        return index < count ? sectionItems.itemAt(index) : null
    }

    implicitWidth: 252
    color: Style.sidebarBg

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: Style.spacingLarge
        spacing: Style.spacingTiny

        RowLayout {
            Layout.bottomMargin: Style.spacingLarge
            Layout.leftMargin: Style.spacingSmall
            spacing: 2

            Image {
                source: "qrc:/resources/logo.png"
                sourceSize.width: 72
                Layout.preferredWidth: 32
                Layout.preferredHeight: 32
                Layout.topMargin: 2
                Layout.bottomMargin: 2
                Layout.rightMargin: 6
                smooth: true
            }

            AppText {
                Layout.fillWidth: true
                text: "TARVO"
                color: Style.textActive
                font.pixelSize: 20
                font.weight: Font.Bold
                font.letterSpacing: 1
            }

            SoundBell { sounds: sidebar.sounds }

            SidebarTool {
                objectName: "compactTool"
                Accessible.name: qsTr("精简视图")
                tip: Shortcuts.tip("compact")
                onClicked: sidebar.compactRequested()

                CompactSign {
                    anchors.centerIn: parent
                    color: Style.textCaption
                }
            }

            SidebarTool {
                objectName: "helpTool"
                Accessible.name: tip
                tip: Shortcuts.tip("help")
                onClicked: sidebar.helpRequested()

                AppText {
                    anchors.centerIn: parent
                    text: "?"
                    color: Style.textCaption
                    font.weight: Font.DemiBold
                }
            }
        }

        GroupTitle {
            Layout.fillWidth: true
            text: qsTr("主菜单")

            SoundSign {
                anchors.right: parent.right
                anchors.verticalCenter: parent.verticalCenter
                sounds: sidebar.sounds
            }
        }

        Repeater {
            id: sectionItems

            model: sidebar.sections

            SidebarItem {
                required property var modelData

                objectName: "section-" + modelData.key
                Layout.fillWidth: true
                text: modelData.title
                tip: Shortcuts.keysOf(modelData.key)
                tipInside: true
                selected: sidebar.currentSection === modelData.key // qmllint disable unqualified
                badge: modelData.key === "messages" ? sidebar.unreadCount : 0 // qmllint disable unqualified
                onClicked: sidebar.sectionRequested(modelData.key) // qmllint disable unqualified
            }
        }

        GroupTitle {
            Layout.topMargin: Style.spacingMedium
            text: qsTr("其他")
        }

        SidebarItem {
            objectName: "logoutItem"
            Layout.fillWidth: true
            text: qsTr("退出登录")
            onClicked: sidebar.logoutRequested()
        }

        Item { Layout.fillHeight: true }

        StatusBlock {
            Layout.fillWidth: true
            Layout.bottomMargin: sidebar.compact ? Style.spacingTiny : Style.spacingMedium
            compact: sidebar.compact
            status: sidebar.status
            onSectionRequested: key => sidebar.sectionRequested(key)
        }

        Rectangle {
            Layout.fillWidth: true
            Layout.bottomMargin: sidebar.compact ? Style.spacingTiny : Style.spacingMedium
            implicitHeight: 1
            color: Style.divider
        }

        RowLayout {
            Layout.leftMargin: Style.spacingSmall
            spacing: Style.spacingMedium

            Rectangle {
                implicitWidth: sidebar.compact ? 34 : 38
                implicitHeight: width
                radius: width / 2
                color: Style.primary

                AppText {
                    anchors.centerIn: parent
                    text: Array.from(userName.text)[0]?.toUpperCase() ?? ""
                    color: Style.buttonText
                    font.weight: Font.DemiBold
                }
            }

            ColumnLayout {
                Layout.fillWidth: true
                spacing: 0

                AppText {
                    id: userName

                    Layout.fillWidth: true
                    text: sidebar.dashboard ? sidebar.dashboard.username || "--" : "--"
                    font.weight: Font.DemiBold
                    fontSizeMode: Text.HorizontalFit
                    minimumPixelSize: Style.fontSmall
                    elide: Text.ElideRight
                }

                CidText {
                    Layout.fillWidth: true
                    cid: sidebar.dashboard ? sidebar.dashboard.cid : "--"
                }
            }
        }
    }

    component GroupTitle: AppText {
        Layout.leftMargin: Style.spacingLarge
        Layout.bottomMargin: Style.spacingTiny
        color: Style.textMuted
        font.pixelSize: Style.fontSmall
    }
}
