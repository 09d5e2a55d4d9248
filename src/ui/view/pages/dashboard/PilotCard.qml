import QtQuick
import QtQuick.Layouts
import com.tarvonet.backend
import "../.."

/// What the pilot flies, on which frequencies, and how long he has been connected.
Card {
    id: card

    required property OverviewBackend overview
    property int unreadCount: 0

    signal messagesRequested()

    RowLayout {
        anchors.fill: parent
        spacing: Style.spacingLarge

        ColumnLayout {
            Layout.fillWidth: true
            Layout.preferredWidth: 180
            spacing: 2

            AppText {
                objectName: "overviewCallsign"
                Layout.fillWidth: true
                text: card.overview ? card.overview.callsign : "--"
                color: Style.textActive
                font.pixelSize: Style.fontHeading
                font.weight: Font.Bold
                fontSizeMode: Text.HorizontalFit
                minimumPixelSize: 14
            }

            AppText {
                Layout.fillWidth: true
                text: card.overview ? card.overview.detail : ""
                color: Style.textCaption
                font.pixelSize: Style.fontSmall
                wrapMode: Text.Wrap
                maximumLineCount: 2
            }
        }

        Reading {
            objectName: "overviewCom1"
            name: "COM1"
            value: card.overview ? card.overview.com1 : "--"
            note: card.overview ? card.overview.com1Station : ""
        }

        Reading {
            name: "COM2"
            value: card.overview ? card.overview.com2 : "--"
            note: card.overview ? card.overview.com2Station : ""
        }

        Reading {
            name: qsTr("应答机")
            value: card.overview ? card.overview.transponder : "--"
        }

        Reading {
            name: qsTr("在线")
            value: card.overview ? card.overview.online : "--"
        }

        CustomButton {
            objectName: "overviewUnread"
            Layout.preferredWidth: 92
            primary: card.unreadCount > 0
            text: card.unreadCount > 0 ? qsTr("%1 条未读").arg(card.unreadCount > 99 ? "99+" : card.unreadCount) : qsTr("无未读")
            font.pixelSize: 13
            leftPadding: Style.spacingSmall
            rightPadding: Style.spacingSmall
            onClicked: card.messagesRequested()
        }
    }

    component Reading: ColumnLayout {
        id: reading

        property string name
        property string value
        property string note: ""

        Layout.fillWidth: true
        Layout.preferredWidth: 88
        spacing: 0

        AppText {
            text: reading.name
            color: Style.textCaption
            font.pixelSize: Style.fontSmall
        }

        AppText {
            Layout.fillWidth: true
            Layout.preferredHeight: 28
            text: reading.value
            color: reading.value === "--" ? Style.textMuted : Style.textActive
            font.pixelSize: 18
            font.weight: Font.DemiBold
            fontSizeMode: Text.HorizontalFit
            minimumPixelSize: 11
        }

        AppText {
            Layout.fillWidth: true
            Layout.preferredHeight: 16
            text: reading.note
            color: Style.textCaption
            font.pixelSize: 11
            fontSizeMode: Text.HorizontalFit
            minimumPixelSize: 10
            elide: Text.ElideRight
        }
    }
}
