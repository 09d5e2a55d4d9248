import QtQuick
import QtQuick.Layouts
import com.tarvonet.backend
import "../.."

/// 总览: the flight now, the account, past flights, news and rankings.
ColumnLayout {
    id: page

    required property DashboardBackend dashboard
    required property ServerBackend server
    required property OverviewBackend overview
    property int unreadCount: 0

    signal sectionRequested(string key)

    spacing: Style.spacingMedium

    Header {
        Layout.fillWidth: true
        title: qsTr("总览")
    }

    ScrollingColumn {
        Layout.fillWidth: true
        Layout.fillHeight: true

        PilotCard {
            Layout.fillWidth: true
            overview: page.overview
            unreadCount: page.unreadCount
            onMessagesRequested: page.sectionRequested("messages")
        }

        FlightStrip {
            Layout.fillWidth: true
            dashboard: page.dashboard
        }

        GreetingCard {
            Layout.fillWidth: true
            dashboard: page.dashboard
        }

        RowLayout {
            Layout.fillWidth: true
            spacing: Style.spacingGrid

            MetricCard {
                Layout.fillWidth: true
                Layout.preferredWidth: 1
                title: qsTr("当前呼号")
                value: page.server ? page.server.callsign.trim().toUpperCase() || "--" : "--"
                accentColor: Style.controlBorderActive
            }

            MetricCard {
                Layout.fillWidth: true
                Layout.preferredWidth: 1
                title: qsTr("账户等级")
                value: page.dashboard ? page.dashboard.rating || "--" : "--"
                accentColor: Style.statusPending
            }

            MetricCard {
                Layout.fillWidth: true
                Layout.preferredWidth: 1
                title: qsTr("总飞行时长")
                value: page.dashboard ? page.dashboard.pilotTime || "--" : "--"
                accentColor: Style.statusSuccess
            }

            MetricCard {
                Layout.fillWidth: true
                Layout.preferredWidth: 1
                title: qsTr("总管制时长")
                value: page.dashboard ? page.dashboard.atcTime || "--" : "--"
                accentColor: Style.primary
            }
        }

        RowLayout {
            Layout.fillWidth: true
            spacing: Style.spacingGrid

            RecentFlightsCard {
                Layout.fillWidth: true
                Layout.preferredWidth: 3
                Layout.preferredHeight: 260
                flights: page.dashboard ? page.dashboard.recentFlightRows : null
            }

            Card {
                Layout.fillWidth: true
                Layout.preferredWidth: 2
                Layout.preferredHeight: 260

                ColumnLayout {
                    anchors.fill: parent
                    spacing: Style.spacingSmall

                    SectionTitle {
                        Layout.fillWidth: true
                        title: qsTr("系统公告与动态")
                    }

                    AppText {
                        Layout.fillWidth: true
                        Layout.topMargin: Style.spacingSmall
                        text: qsTr("TARVO 客户端更新日志 v1.2.0")
                        font.weight: Font.DemiBold
                        wrapMode: Text.Wrap
                    }

                    AppText {
                        Layout.fillWidth: true
                        text: qsTr("优化了模拟器连接稳定性，新增了更美观的仪表盘界面...")
                        color: Style.textCaption
                        font.pixelSize: 13
                        lineHeight: 1.3
                        wrapMode: Text.Wrap
                    }

                    Item { Layout.fillHeight: true }

                    RowLayout {
                        spacing: Style.spacingMedium

                        PageButton {
                            objectName: "updateButton"
                            text: qsTr("检查更新")
                            address: page.dashboard ? page.dashboard.updateUrl : ""
                        }

                        PageButton {
                            objectName: "docsButton"
                            text: qsTr("官方文档")
                            address: page.dashboard ? page.dashboard.docsUrl : ""
                        }
                    }
                }
            }
        }

        RowLayout {
            Layout.fillWidth: true
            Layout.bottomMargin: Style.paddingPage
            spacing: Style.spacingGrid

            LeaderboardCard {
                Layout.fillWidth: true
                Layout.fillHeight: true
                Layout.preferredWidth: 1
                title: qsTr("飞行员排行榜")
                note: qsTr("TOP 10")
                timeTitle: qsTr("累计飞行")
                rows: page.dashboard ? page.dashboard.pilotLeaderboardRows : null
            }

            LeaderboardCard {
                Layout.fillWidth: true
                Layout.fillHeight: true
                Layout.preferredWidth: 1
                title: qsTr("管制员排行榜")
                timeTitle: qsTr("累计管制")
                rows: page.dashboard ? page.dashboard.atcLeaderboardRows : null
            }
        }
    }

    /// Opens a page in the browser; not there without one.
    component PageButton: CustomButton {
        property string address

        visible: address.length > 0
        implicitHeight: 34
        leftPadding: Style.spacingMedium
        rightPadding: Style.spacingMedium
        font.pixelSize: 13
        onClicked: Qt.openUrlExternally(address)
    }
}
