import QtQuick
import QtQuick.Layouts
import com.tarvonet.backend
import "../.."

/// The last message; above it the signs of sounds and of what is unread, which are there without a message too.
Rectangle {
    id: pane

    required property CompactBackend compact
    required property SoundsBackend sounds
    property int unread: 0
    readonly property string time: compact ? compact.messageTime : ""
    /// A message may be of blanks.
    readonly property bool there: time.length > 0

    radius: Style.radiusButton
    color: Style.instrumentGlass

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: Style.spacingSmall
        anchors.leftMargin: Style.spacingMedium
        spacing: 2

        Item { // a layout loses track of what appears in it while its window is hidden
            Layout.fillWidth: true
            implicitHeight: 18

            AppText {
                objectName: "compactFrom"
                anchors.left: parent.left
                anchors.right: signs.left
                anchors.rightMargin: Style.spacingSmall
                text: pane.compact ? pane.compact.messageHead : ""
                color: Style.controlSelection
                font.pixelSize: Style.fontSmall
                font.weight: Font.DemiBold
                elide: Text.ElideRight
                maximumLineCount: 1
            }

            Row {
                id: signs

                anchors.right: parent.right
                spacing: Style.spacingSmall

                SoundSign {
                    height: 18
                    dark: true
                    sounds: pane.sounds
                }

                CountBadge {
                    objectName: "compactUnread"
                    Accessible.role: Accessible.StaticText
                    Accessible.name: qsTr("%1 条未读").arg(count)
                    height: 18
                    count: pane.unread
                }

                AppText {
                    text: pane.time
                    color: Style.instrumentDim
                    font.pixelSize: Style.fontSmall
                }
            }
        }

        AppText {
            objectName: "compactText"
            Layout.fillWidth: true
            Layout.fillHeight: true
            text: pane.compact && pane.there ? pane.compact.messageText : qsTr("暂无消息")
            color: pane.there ? Style.instrumentLine : Style.instrumentDim
            font.pixelSize: 13
            horizontalAlignment: pane.there ? Text.AlignLeft : Text.AlignHCenter
            verticalAlignment: pane.there ? Text.AlignTop : Text.AlignVCenter
            wrapMode: Text.Wrap
            elide: Text.ElideRight
            clip: true
        }
    }
}
