import QtQuick
import QtQuick.Layouts
import com.tarvonet.backend
import "../.."

/// 服务器: the form on the left, what happens on the right.
ColumnLayout {
    id: page

    required property ServerBackend server
    required property LeaveBackend leave
    readonly property bool connected: server ? server.serverConnected : false

    spacing: Style.spacingMedium

    Header {
        Layout.fillWidth: true
        title: qsTr("服务器")

        StatusChip {
            visible: page.server ? page.server.connectedAsObserver : false
            status: qsTr("观察员")
            good: true
        }

        StatusChip {
            label: page.server ? page.server.endpoint : ""
            status: page.server ? page.server.serverStatusText : "--"
            tone: page.server ? page.server.serverTone : "quiet"
        }
    }

    RowLayout {
        Layout.fillWidth: true
        Layout.fillHeight: true
        spacing: Style.spacingGrid

        ScrollingColumn {
            Layout.fillHeight: true
            Layout.preferredWidth: Math.max(340, Math.min(460, page.width * 0.38))
            rightPadding: 8

            Card {
                Layout.fillWidth: true

                ColumnLayout {
                    anchors.fill: parent
                    spacing: Style.spacingMedium

                    SectionTitle {
                        Layout.fillWidth: true
                        title: qsTr("基础信息")
                        note: page.server ? page.server.protocolLabel : "--"
                    }

                    Figure {
                        label: qsTr("真实姓名")
                        value: page.server ? page.server.realName || "--" : "--"
                    }

                    Figure {
                        label: qsTr("初始机场")
                        value: page.server ? page.server.homeAirport || "--" : "--"
                    }
                }
            }

            ConnectForm {
                Layout.fillWidth: true
                Layout.bottomMargin: Style.paddingPage
                server: page.server
                leave: page.leave
            }
        }

        ColumnLayout {
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.topMargin: 8
            Layout.bottomMargin: 8
            Layout.rightMargin: 8
            spacing: Style.spacingGrid

            Card {
                Layout.fillWidth: true
                Layout.fillHeight: true
                Layout.preferredHeight: 1

                ColumnLayout {
                    anchors.fill: parent
                    spacing: Style.spacingMedium

                    RowLayout {
                        Layout.fillWidth: true

                        SectionTitle {
                            Layout.fillWidth: true
                            title: qsTr("服务器日志")
                        }

                        CustomButton {
                            objectName: "clearLogButton"
                            implicitHeight: 32
                            leftPadding: Style.spacingMedium
                            rightPadding: Style.spacingMedium
                            text: qsTr("清空日志")
                            font.pixelSize: Style.fontSmall
                            onClicked: if (page.server) page.server.clearServerLog()
                        }
                    }

                    LogView {
                        objectName: "logView"
                        Layout.fillWidth: true
                        Layout.fillHeight: true
                        source: page.server
                    }
                }
            }

            Card {
                Layout.fillWidth: true
                Layout.fillHeight: true
                Layout.preferredHeight: 1

                ColumnLayout {
                    anchors.fill: parent
                    spacing: Style.spacingMedium

                    SectionTitle {
                        Layout.fillWidth: true
                        title: qsTr("最近事件")
                    }

                    EventList {
                        objectName: "eventList"
                        Layout.fillWidth: true
                        Layout.fillHeight: true
                        model: page.server ? page.server.recentEventRows : null
                    }
                }
            }
        }
    }
}
