import QtQuick
import QtQuick.Layouts
import ".."

/// A glass card for one simulator platform.
Pressable {
    id: card

    property string description: ""
    property string versions: ""

    implicitWidth: 400
    implicitHeight: 176
    padding: Style.radiusLarge

    background: Rectangle {
        radius: Style.radiusLarge
        color: card.hovered || card.visualFocus ? Style.glassHover : Style.glass
        border.width: card.visualFocus ? 2 : 1
        border.color: card.visualFocus ? Style.onImage : Style.glassBorder
        scale: card.down ? 0.985 : 1

        Behavior on color { ColorAnimation { duration: Style.animationShort } }
        Behavior on scale { NumberAnimation { duration: Style.animationShort } }
    }
    contentItem: RowLayout {
        spacing: Style.spacingLarge

        ColumnLayout {
            Layout.fillWidth: true
            spacing: Style.spacingSmall

            AppText {
                text: card.text
                color: Style.onImage
                font.pixelSize: 30
                font.weight: Font.Bold
            }

            AppText {
                Layout.fillWidth: true
                text: card.description
                color: Style.onImage
                font.pixelSize: Style.fontTitle
                elide: Text.ElideRight
            }

            AppText {
                Layout.fillWidth: true
                text: card.versions
                color: Style.onImageSoft
                font.pixelSize: 13
                elide: Text.ElideRight
            }
        }

        Rectangle {
            Layout.alignment: Qt.AlignVCenter
            implicitWidth: 52
            implicitHeight: 52
            radius: 26
            color: Style.onImage

            // An arrow head: two strokes.
            Item {
                anchors.centerIn: parent
                anchors.horizontalCenterOffset: -3
                width: 12
                height: 12
                rotation: 45

                Rectangle { anchors.right: parent.right; width: 2.5; height: parent.height; color: Style.primary }
                Rectangle { width: parent.width; height: 2.5; color: Style.primary }
            }
        }
    }
}
