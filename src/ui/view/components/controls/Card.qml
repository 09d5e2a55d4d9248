import QtQuick
import QtQuick.Controls.Basic
import "../.."

/// A translucent sheet with a soft shadow. It is as large as its one child wants to be.
Pane {
    id: card

    property bool showShadow: true
    property real contentPadding: 20
    /// Cuts what reaches over the frame; not where there is a shadow, which lies outside of it.
    property bool clipSelf: true
    property bool clipContent: true
    property real radius: Style.radiusCard

    padding: contentPadding
    clip: clipSelf && !showShadow

    contentItem: Item {
        clip: card.clipContent
    }
    background: Item {
        Repeater {
            model: card.showShadow ? 7 : 0

            // Rings outside the frame: a filled shadow would show through the sheet.
            Rectangle {
                required property int index

                anchors.fill: parent
                anchors.margins: -1 - index
                anchors.topMargin: 2 - index
                anchors.bottomMargin: -3 - index
                radius: card.radius + 1 + index // qmllint disable unqualified
                color: "transparent"
                border.width: 1
                border.color: Qt.alpha(Style.cardShadow, 0.026 * (1 - index / 7))
            }
        }

        Rectangle {
            anchors.fill: parent
            radius: card.radius
            color: Style.cardBackground
            border.width: 1
            border.color: Style.cardBorder
        }
    }
}
