import QtQuick
import QtQuick.Layouts
import "../.."

/// Stands where messages will: a drawn speech bubble, what is missing, and what to expect.
ColumnLayout {
    id: hint

    property string title: ""
    property string detail: ""

    spacing: Style.spacingSmall

    Rectangle {
        Layout.alignment: Qt.AlignHCenter
        Layout.bottomMargin: Style.spacingSmall
        implicitWidth: 96
        implicitHeight: 96
        radius: width / 2
        color: Style.accentSoft

        Rectangle { // the bubble's tail
            x: 32
            y: 54
            width: 14
            height: 14
            rotation: 45
            color: Style.bubbleIncoming
        }

        Rectangle {
            anchors.centerIn: parent
            anchors.verticalCenterOffset: -4
            width: 52
            height: 36
            radius: 12
            color: Style.bubbleIncoming

            Row {
                anchors.centerIn: parent
                spacing: 6

                Repeater {
                    model: 3

                    Rectangle {
                        width: 6
                        height: 6
                        radius: 3
                        color: Style.textMuted
                    }
                }
            }
        }
    }

    AppText {
        Layout.fillWidth: true
        horizontalAlignment: Text.AlignHCenter
        text: hint.title
        color: Style.textCaption
        font.weight: Font.DemiBold
        wrapMode: Text.Wrap
    }

    AppText {
        Layout.fillWidth: true
        horizontalAlignment: Text.AlignHCenter
        visible: text.length > 0
        text: hint.detail
        color: Style.textMuted
        font.pixelSize: Style.fontSmall
        wrapMode: Text.Wrap
    }
}
