import QtQuick
import QtQuick.Layouts
import com.tarvonet.backend
import "../.."

/// How the connections are, in sight on every page. A line opens the page that tells more.
Rectangle {
    id: block

    required property StatusBackend status

    /// Takes little height. The banner and the pages have the whole reason.
    property bool compact: false

    signal sectionRequested(string key)

    implicitHeight: lines.implicitHeight + 2 * Style.spacingTiny
    radius: Style.radiusButton
    color: Style.sheet

    ColumnLayout {
        id: lines

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        anchors.margins: Style.spacingTiny
        spacing: 0

        Repeater {
            model: block.status ? block.status.lineRows : null

            Pressable {
                id: line

                required property string section
                required property string name
                required property string word
                required property string tone
                required property string reason

                objectName: "status-" + section
                Layout.fillWidth: true
                padding: block.compact ? 4 : 6 // qmllint disable unqualified
                leftPadding: 10
                rightPadding: 10
                text: qsTr("%1：%2").arg(name).arg(word)
                Accessible.description: reason
                onClicked: block.sectionRequested(section) // qmllint disable unqualified

                background: Rectangle {
                    radius: Style.radiusSmall + 2
                    color: line.hovered || line.down ? Style.sheet : "transparent"
                    border.width: line.ringWidth
                    border.color: line.ringColor
                }
                contentItem: ColumnLayout {
                    spacing: 2

                    RowLayout {
                        Layout.fillWidth: true
                        spacing: Style.spacingSmall

                        StatusDot { tone: line.tone }

                        AppText {
                            Layout.fillWidth: true
                            text: line.name
                            color: Style.textCaption
                            font.pixelSize: Style.fontSmall
                        }

                        AppText {
                            text: line.word
                            color: line.tone === "failed" ? Style.textError : Style.textPrimary
                            font.pixelSize: Style.fontSmall
                            font.weight: Font.DemiBold
                        }
                    }

                    AppText {
                        objectName: "statusReason"
                        Layout.fillWidth: true
                        Layout.leftMargin: 16
                        visible: text.length > 0
                        text: line.reason
                        color: Style.textError
                        font.pixelSize: 11
                        wrapMode: Text.Wrap
                        maximumLineCount: block.compact ? 1 : 2 // qmllint disable unqualified
                        elide: Text.ElideRight
                    }
                }
            }
        }
    }
}
