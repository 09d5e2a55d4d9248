import QtQuick
import QtQuick.Layouts
import "../.."

/// The best ten of one kind: rows with "rank", "name", "cid" and "time", best first.
Card {
    id: card

    property string title: ""
    property string note: ""
    property string timeTitle: ""
    property alias rows: places.model

    ColumnLayout {
        anchors.fill: parent
        spacing: Style.spacingSmall

        SectionTitle {
            Layout.fillWidth: true
            title: card.title
            note: card.note.length > 0 ? card.note + " · " + card.timeTitle : card.timeTitle
        }

        Repeater {
            id: places

            RowLayout {
                id: row

                required property int index
                required property string name
                required property string cid
                required property string time
                readonly property bool podium: index < 3

                Layout.fillWidth: true
                Layout.preferredHeight: 32
                spacing: Style.spacingMedium

                Rectangle {
                    implicitWidth: 24
                    implicitHeight: 24
                    radius: 12
                    color: row.podium ? Style.primary : Style.accentSoft

                    AppText {
                        anchors.centerIn: parent
                        text: String(row.index + 1)
                        color: row.podium ? Style.buttonText : Style.textCaption
                        font.pixelSize: Style.fontSmall
                        font.weight: Font.DemiBold
                    }
                }

                AppText {
                    Layout.fillWidth: true
                    text: row.name || row.cid
                    elide: Text.ElideRight
                }

                AppText {
                    text: row.time
                    color: Style.textCaption
                    font.pixelSize: 13
                }
            }
        }

        AppText {
            visible: places.count === 0
            Layout.fillWidth: true
            Layout.preferredHeight: 64
            horizontalAlignment: Text.AlignHCenter
            text: qsTr("暂无排行数据")
            color: Style.textMuted
            font.pixelSize: 13
        }

        Item { Layout.fillHeight: true }
    }
}
