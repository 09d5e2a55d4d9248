import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import com.tarvonet.backend
import "../.."

/// What there is to read and whom to write to: channels, private sessions, stations nearby.
Card {
    id: column

    required property MessagesBackend messages
    required property SimulatorBackend simulator

    contentPadding: Style.spacingMedium

    ColumnLayout {
        anchors.fill: parent
        spacing: 2

        RowLayout {
            Layout.fillWidth: true
            Layout.leftMargin: Style.spacingMedium

            SectionTitle {
                Layout.fillWidth: true
                objectName: "columnTitle"
                title: qsTr("消息")
            }

            CustomButton {
                objectName: "clearMessagesButton"
                implicitHeight: 28
                leftPadding: Style.spacingMedium
                rightPadding: Style.spacingMedium
                text: qsTr("清空")
                font.pixelSize: Style.fontSmall
                onClicked: if (column.messages) column.messages.clearMessages()
            }
        }

        Repeater {
            model: column.messages ? column.messages.channelList : null

            ListRow {
                required property string key
                required property string label
                required property int unread

                Layout.fillWidth: true
                objectName: "channel-" + key
                text: label
                badge: unread
                selected: column.messages.activeChannel === key // qmllint disable unqualified
                onClicked: column.messages.activeChannel = key // qmllint disable unqualified
            }
        }

        SectionTitle {
            Layout.fillWidth: true
            Layout.topMargin: Style.spacingSmall
            Layout.leftMargin: Style.spacingMedium
            Layout.rightMargin: Style.spacingMedium
            title: qsTr("私聊")
            note: sessionList.count > 0 ? sessionList.count : ""
        }

        SideList {
            id: sessionList

            objectName: "sessionList"
            model: column.messages ? column.messages.sessionList : null
            emptyText: qsTr("点击发送者或附近管制开始私聊")
            // As long as its rows; the stations have the rest.
            Layout.maximumHeight: Math.max(Layout.minimumHeight, contentHeight)
            delegate: ListRow {
                required property int index
                required property string callsign
                required property string time
                required property string lastText
                required property int unread

                width: ListView.view.width
                objectName: "session-" + callsign
                text: callsign
                note: time
                detail: lastText
                badge: unread
                selected: column.messages.activeChannel === callsign // qmllint disable unqualified
                closable: true
                onVisualFocusChanged: if (visualFocus) sessionList.reveal(index) // qmllint disable unqualified
                onClicked: column.messages.openPrivateSession(callsign) // qmllint disable unqualified
                onCloseRequested: column.messages.closePrivateSession(callsign) // qmllint disable unqualified
            }
        }

        SectionTitle {
            Layout.fillWidth: true
            Layout.topMargin: Style.spacingSmall
            Layout.leftMargin: Style.spacingMedium
            Layout.rightMargin: Style.spacingMedium
            title: qsTr("附近管制")
            note: stationList.count > 0 ? stationList.count : ""
        }

        SideList {
            id: stationList

            objectName: "stationList"
            model: column.messages ? column.messages.stationList : null
            emptyText: qsTr("附近暂无管制席位")
            delegate: ListRow {
                id: station

                required property int index
                required property string callsign
                required property string frequency
                required property string name

                width: ListView.view.width
                objectName: "station-" + callsign
                text: callsign
                detail: name.length > 0 ? name : " "
                Accessible.description: (frequency + " " + name).trim()
                onVisualFocusChanged: if (visualFocus) stationList.reveal(index) // qmllint disable unqualified
                onClicked: column.messages.openPrivateSession(callsign) // qmllint disable unqualified
                actions: [
                    StationControl {
                        objectName: "tune-" + station.callsign
                        text: station.frequency
                        Accessible.name: qsTr("COM1 调到 %1").arg(text)
                        Accessible.description: qsTr("长按或右键：COM2")
                        onClicked: column.tune(text, 1) // qmllint disable unqualified
                        onPressAndHold: column.tune(text, 2) // qmllint disable unqualified
                        onSecondary: column.tune(text, 2) // qmllint disable unqualified
                    },
                    StationControl {
                        objectName: "atis-" + station.callsign
                        text: "ATIS"
                        Accessible.name: qsTr("%1 的 ATIS").arg(station.callsign)
                        onClicked: column.messages.requestAtis(station.callsign) // qmllint disable unqualified
                    }
                ]
            }
        }
    }

    function tune(frequency: string, radio: int): void {
        if (radio === 2)
            simulator?.requestSetCom2Frequency(frequency)
        else
            simulator?.requestSetCom1Frequency(frequency)
    }

    component SideList: ListView {
        id: side

        property string emptyText: ""

        Layout.fillWidth: true
        Layout.fillHeight: true
        Layout.preferredHeight: 1
        Layout.minimumHeight: 60
        clip: true
        spacing: 2
        boundsBehavior: Flickable.StopAtBounds
        ScrollBar.vertical: CustomScrollBar {}

        /// The keyboard goes to rows that are out of sight, too.
        function reveal(index: int): void {
            positionViewAtIndex(index, ListView.Contain)
        }

        AppText {
            y: 22
            anchors.horizontalCenter: parent.horizontalCenter
            width: parent.width - 2 * Style.spacingSmall
            horizontalAlignment: Text.AlignHCenter
            visible: side.count === 0
            text: side.emptyText
            color: Style.textMuted
            font.pixelSize: Style.fontSmall
            wrapMode: Text.Wrap
        }
    }
}
