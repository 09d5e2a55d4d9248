import QtQuick
import QtQuick.Layouts
import "../.."

/// The best ten of one kind: maps with "rank", "name", "cid" and "time", best first.
Card {
    id: card

    property string title: ""
    property string note: ""
    property string timeTitle: ""
    property var rows: []

    ColumnLayout {
        anchors.fill: parent
        spacing: Style.spacingSmall

        SectionTitle {
            Layout.fillWidth: true
            title: card.title
            note: card.note.length > 0 ? card.note + " · " + card.timeTitle : card.timeTitle
        }

        Repeater {
            model: card.rows.slice(0, 10)

            RowLayout {
                id: row

                required property var modelData
                required property int index
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
                        text: String(row.modelData?.rank ?? row.index + 1)
                        color: row.podium ? Style.buttonText : Style.textSecondary
                        font.pixelSize: Style.fontSmall
                        font.weight: Font.DemiBold
                    }
                }

                AppText {
                    Layout.fillWidth: true
                    text: row.modelData?.name || String(row.modelData?.cid ?? "--")
                    elide: Text.ElideRight
                }

                AppText {
                    text: row.modelData?.time ?? "--"
                    color: Style.textSecondary
                    font.pixelSize: 13
                }
            }
        }

        AppText {
            visible: card.rows.length === 0
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
