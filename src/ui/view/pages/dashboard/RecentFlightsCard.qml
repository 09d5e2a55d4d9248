import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import "../.."

/// The pilot's last flights: rows with "callsign", "time" and "duration", newest first.
Card {
    id: card

    property alias flights: list.model

    ColumnLayout {
        anchors.fill: parent
        spacing: Style.spacingSmall

        SectionTitle {
            Layout.fillWidth: true
            title: qsTr("最近飞行")
            note: list.count > 0 ? qsTr("%1 次").arg(list.count) : ""
        }

        ListView {
            id: list

            Layout.fillWidth: true
            Layout.fillHeight: true
            clip: true
            highlightFollowsCurrentItem: false // the mark that nobody sees would slide for a second
            boundsBehavior: Flickable.StopAtBounds
            ScrollBar.vertical: CustomScrollBar {}

            delegate: Item {
                id: row

                required property string callsign
                required property string time
                required property string duration
                required property int index

                width: ListView.view.width
                height: 40

                Rectangle {
                    visible: row.index > 0
                    width: parent.width
                    height: 1
                    color: Style.divider
                }

                RowLayout {
                    anchors.fill: parent
                    anchors.rightMargin: Style.spacingMedium
                    spacing: Style.spacingMedium

                    AppText {
                        Layout.preferredWidth: 128 // a callsign of twelve characters
                        text: row.callsign
                        font.weight: Font.DemiBold
                        elide: Text.ElideRight
                    }

                    AppText {
                        Layout.fillWidth: true
                        text: row.time
                        color: Style.textCaption
                        font.pixelSize: 13
                        elide: Text.ElideRight
                    }

                    AppText {
                        text: row.duration
                        font.pixelSize: 13
                    }
                }
            }

            AppText {
                anchors.centerIn: parent
                visible: list.count === 0
                text: qsTr("暂无最近飞行记录")
                color: Style.textMuted
                font.pixelSize: 13
            }
        }
    }
}
