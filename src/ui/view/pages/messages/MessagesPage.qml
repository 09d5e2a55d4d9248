import QtQuick
import QtQuick.Layouts
import com.tarvonet.backend
import "../.."

/// 消息: the channels on the left, the active one's messages and the line to write on the right.
ColumnLayout {
    id: page

    required property MessagesBackend messages
    property SimulatorBackend simulator: null

    spacing: Style.spacingMedium

    /// The keyboard goes to the line that is being written.
    function write(): void {
        compose.focusLine()
    }

    function search(): void {
        head.search()
    }

    Header {
        Layout.fillWidth: true
        title: qsTr("消息")

        AppText {
            height: 32
            text: page.messages ? page.messages.summaryText : "--"
            color: Style.textCaption
            font.pixelSize: Style.fontSmall
        }

        StatusChip {
            status: !page.messages ? "--" : good ? qsTr("已连接") : qsTr("未连接")
            good: page.messages ? page.messages.networkConnected : false
        }
    }

    RowLayout {
        Layout.fillWidth: true
        Layout.fillHeight: true
        Layout.margins: 8
        Layout.topMargin: 0
        Layout.leftMargin: 0
        spacing: Style.spacingGrid

        ChannelColumn {
            Layout.fillHeight: true
            Layout.preferredWidth: Math.max(220, Math.min(300, page.width * 0.26))
            messages: page.messages
            simulator: page.simulator
        }

        Card {
            Layout.fillWidth: true
            Layout.fillHeight: true

            ColumnLayout {
                anchors.fill: parent
                spacing: Style.spacingMedium

                ChannelHead {
                    id: head

                    Layout.fillWidth: true
                    messages: page.messages
                    count: list.count
                    searchable: !list.overview
                    onSearchLeft: {
                        list.toEnd()
                        page.write()
                    }
                }

                Rectangle {
                    Layout.fillWidth: true
                    implicitHeight: 1
                    color: Style.divider
                }

                MessageList {
                    id: list

                    objectName: "messagePane"
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    messages: page.messages
                }

                ComposeLine {
                    id: compose

                    Layout.fillWidth: true
                    messages: page.messages
                    elsewhere: list
                    onPageRequested: count => list.page(count)
                    onNewestRequested: list.toEnd()
                }
            }
        }
    }
}
