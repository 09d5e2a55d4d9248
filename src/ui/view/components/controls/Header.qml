import QtQuick
import "../.."

/// The title of a page; what belongs to the whole page stands at its right end.
Item {
    id: header

    property string title: qsTr("总览")
    default property alias actions: actionRow.data

    implicitHeight: 44

    AppText {
        anchors.left: parent.left
        anchors.leftMargin: Style.spacingTiny
        anchors.right: actionRow.left
        anchors.rightMargin: Style.spacingMedium
        anchors.verticalCenter: parent.verticalCenter
        text: header.title
        color: Style.textActive
        font.pixelSize: Style.fontHeading
        font.weight: Font.Bold
        elide: Text.ElideRight
    }

    Row {
        id: actionRow

        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        spacing: Style.spacingSmall
    }
}
