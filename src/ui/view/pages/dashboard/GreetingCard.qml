import QtQuick
import QtQuick.Layouts
import com.tarvonet.backend
import "../.."

/// Who is signed in, and how both connections are.
Card {
    id: card

    required property DashboardBackend dashboard

    RowLayout {
        anchors.fill: parent
        spacing: Style.spacingLarge

        Rectangle {
            implicitWidth: 60
            implicitHeight: 60
            radius: 30
            color: Style.primary

            AppText {
                anchors.centerIn: parent
                text: Array.from(card.dashboard ? card.dashboard.username : "")[0]?.toUpperCase() ?? "T"
                color: Style.buttonText
                font.pixelSize: Style.fontHeading
                font.weight: Font.DemiBold
            }
        }

        ColumnLayout {
            Layout.fillWidth: true
            spacing: 2

            AppText {
                Layout.fillWidth: true
                text: qsTr("你好，%1").arg(card.dashboard ? card.dashboard.username || "--" : "--")
                color: Style.textActive
                font.pixelSize: Style.fontValue
                font.weight: Font.DemiBold
                fontSizeMode: Text.HorizontalFit
                minimumPixelSize: 14
                elide: Text.ElideRight
            }

            CidText {
                Layout.fillWidth: true
                cid: card.dashboard ? card.dashboard.cid : "--"
                font.pixelSize: 13
            }
        }

        StatusChip {
            label: qsTr("模拟器")
            status: card.dashboard ? card.dashboard.simulatorStatusText : "--"
            tone: card.dashboard ? card.dashboard.simulatorTone : "quiet"
        }

        StatusChip {
            label: qsTr("网络")
            status: card.dashboard ? card.dashboard.serverStatusText : "--"
            tone: card.dashboard ? card.dashboard.serverTone : "quiet"
        }
    }
}
