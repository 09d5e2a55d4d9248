import QtQuick
import QtQuick.Layouts
import com.tarvonet.backend
import "../.."

/// The last message; in its place what went wrong, until the pilot knows.
Rectangle {
    id: pane

    required property CompactBackend compact
    required property StatusBackend status
    required property SoundsBackend sounds
    property int unread: 0
    readonly property string trouble: status ? status.bannerText : ""
    readonly property string text: compact ? compact.messageText : ""

    radius: Style.radiusButton
    color: Style.instrumentGlass

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: Style.spacingSmall
        anchors.leftMargin: Style.spacingMedium
        spacing: 2

        RowLayout {
            Layout.fillWidth: true
            spacing: Style.spacingSmall
            visible: pane.trouble.length > 0 || pane.text.length > 0

            AppText {
                objectName: "compactFrom"
                Layout.fillWidth: true
                text: pane.trouble ? qsTr("出了问题") : pane.compact ? pane.compact.messageHead : ""
                color: pane.trouble ? Style.noticeBorder : Style.controlSelection
                font.pixelSize: Style.fontSmall
                font.weight: Font.DemiBold
                elide: Text.ElideRight
            }

            SoundSign {
                Layout.maximumHeight: 18
                dark: true
                sounds: pane.sounds
            }

            CountBadge {
                objectName: "compactUnread"
                Accessible.role: Accessible.StaticText
                Accessible.name: qsTr("%1 条未读").arg(count)
                Layout.preferredHeight: 18
                count: pane.unread
            }

            AppText {
                visible: text.length > 0 && pane.trouble.length === 0
                text: pane.compact ? pane.compact.messageTime : ""
                color: Style.instrumentDim
                font.pixelSize: Style.fontSmall
            }
        }

        AppText {
            objectName: "compactText"
            Layout.fillWidth: true
            Layout.fillHeight: true
            text: pane.trouble || pane.text || qsTr("暂无消息")
            color: pane.trouble ? Style.noticeBorder : pane.text ? Style.instrumentLine : Style.instrumentDim
            font.pixelSize: 13
            horizontalAlignment: pane.trouble || pane.text ? Text.AlignLeft : Text.AlignHCenter
            verticalAlignment: pane.trouble || pane.text ? Text.AlignTop : Text.AlignVCenter
            wrapMode: Text.Wrap
            elide: Text.ElideRight
            clip: true
        }
    }
}
