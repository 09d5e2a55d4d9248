import QtQuick
import QtQuick.Controls.Basic
import ".."

/// One line of the sidebar: a dot in place of an icon, and the title.
AbstractButton {
    id: item

    property bool selected: false

    implicitHeight: 46
    leftPadding: Style.spacingLarge
    rightPadding: Style.spacingMedium
    focusPolicy: Qt.StrongFocus
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

    background: Rectangle {
        radius: 23
        color: item.selected ? Style.sidebarItemSelected : item.hovered || item.down ? Style.sidebarItemHover : "transparent"
        border.width: item.visualFocus ? 2 : 0
        border.color: Style.controlBorderActive
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
            color: item.selected ? Style.textActive : Style.textSecondary
            font.weight: item.selected ? Font.DemiBold : Font.Normal
            elide: Text.ElideRight
        }
    }
    HoverHandler { cursorShape: Qt.PointingHandCursor }
}
