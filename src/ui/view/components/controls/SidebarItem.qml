import QtQuick
import "../.."

/// One line of the sidebar: a dot in place of an icon, the title, and how much is waiting there.
Pressable {
    id: item

    property bool selected: false
    /// No badge at 0.
    property int badge: 0

    implicitHeight: 46
    leftPadding: Style.spacingLarge
    rightPadding: Style.spacingMedium + (countBadge.visible ? countBadge.width + Style.spacingSmall : 0)
    Accessible.name: badge > 0 ? text + qsTr("，%1 条未读").arg(badge) : text

    background: Rectangle {
        radius: 23
        color: item.selected ? Style.sidebarItemSelected : item.hovered || item.down ? Style.sidebarItemHover : "transparent"
        border.width: item.ringWidth
        border.color: item.ringColor
    }
    contentItem: Row {
        spacing: Style.spacingMedium

        Rectangle {
            anchors.verticalCenter: parent.verticalCenter
            width: 14
            height: 14
            radius: 7
            color: item.selected ? Style.accent : "transparent"
            border.width: 2
            border.color: item.selected ? Style.accent : Style.textMuted
        }

        AppText {
            height: parent.height
            width: parent.width - 14 - parent.spacing
            text: item.text
            color: item.selected ? Style.textActive : Style.textCaption
            font.weight: item.selected ? Font.DemiBold : Font.Normal
            elide: Text.ElideRight
        }
    }

    CountBadge {
        id: countBadge

        objectName: "sidebarBadge"
        anchors.right: parent.right
        anchors.rightMargin: Style.spacingMedium
        anchors.verticalCenter: parent.verticalCenter
        count: item.badge
    }
}
