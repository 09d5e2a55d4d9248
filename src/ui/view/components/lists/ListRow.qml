import QtQuick
import QtQuick.Layouts
import "../.."

/// One line of a column to choose from: a name, a note at the right, how much is unread, and a quiet second line.
Pressable {
    id: row

    property string note: ""
    property string detail: ""
    property bool selected: false
    property int badge: 0
    /// Named controls of the row, right of its texts.
    property alias actions: actionRow.data
    /// Shows a cross that raises closeRequested().
    property bool closable: false

    signal closeRequested()

    implicitHeight: detail.length > 0 ? 48 : 32
    clip: true // a callsign of marks upon marks stays in its line
    leftPadding: Style.spacingMedium
    rightPadding: closable ? 30 : Style.spacingMedium + (actionRow.width > 0 ? actionRow.width + Style.spacingSmall : 0)
    focusPolicy: Qt.TabFocus
    Keys.onDeletePressed: event => {
        event.accepted = closable
        if (closable)
            close()
    }
    Accessible.name: badge > 0 ? text + qsTr("，%1 条未读").arg(badge) : text
    Accessible.description: (note + " " + detail).trim()

    /// The row goes, and leaves the keyboard's focus to the next one.
    function close(): void {
        if (activeFocus || cross.activeFocus)
            cross.nextItemInFocusChain(true).forceActiveFocus(Qt.TabFocusReason)
        closeRequested()
    }

    background: Rectangle {
        radius: Style.radiusSmall + 2
        color: row.selected ? Style.sidebarItemSelected : row.hovered || row.down ? Style.sheet : "transparent"
        border.width: row.ringWidth
        border.color: row.ringColor

        Rectangle {
            anchors.left: parent.left
            anchors.verticalCenter: parent.verticalCenter
            width: 3
            height: parent.height - 16
            radius: 1.5
            visible: row.selected
            color: Style.controlBorderActive
        }
    }
    contentItem: ColumnLayout {
        spacing: 1

        RowLayout {
            Layout.fillWidth: true
            spacing: Style.spacingSmall

            AppText {
                Layout.fillWidth: true
                clip: true // an elided text of both directions may be wider than it should
                horizontalAlignment: Text.AlignLeft
                text: row.text
                color: row.selected || row.badge > 0 ? Style.textActive : Style.textPrimary
                font.pixelSize: 13
                font.weight: row.selected || row.badge > 0 ? Font.DemiBold : Font.Normal
                elide: Text.ElideRight
                maximumLineCount: 1
            }

            AppText {
                visible: text.length > 0
                text: row.note
                color: Style.textCaption
                font.pixelSize: Style.fontSmall
            }

            CountBadge {
                implicitHeight: 18
                count: row.badge
            }
        }

        AppText {
            Layout.fillWidth: true
            clip: true
            horizontalAlignment: Text.AlignLeft
            visible: text.length > 0
            text: row.detail
            color: Style.textCaption
            font.pixelSize: Style.fontSmall
            elide: Text.ElideRight
            maximumLineCount: 1
        }
    }

    Column {
        id: actionRow

        anchors.right: parent.right
        anchors.rightMargin: Style.spacingSmall
        anchors.verticalCenter: parent.verticalCenter
        spacing: 2
    }

    Pressable {
        id: cross

        objectName: "closeControl"
        anchors.right: parent.right
        anchors.rightMargin: 6
        anchors.verticalCenter: parent.verticalCenter
        width: 20
        height: 20
        visible: row.closable
        Accessible.name: qsTr("关闭 %1").arg(row.text)
        focusPolicy: Qt.TabFocus
        hoverEnabled: true
        onClicked: row.close()
        Keys.onDeletePressed: clicked()

        background: Rectangle {
            radius: 10
            color: cross.hovered ? Style.accentSoft : "transparent"
            border.width: cross.ringWidth
            border.color: cross.ringColor
        }
        contentItem: AppText {
            text: "×"
            color: cross.hovered ? Style.textActive : Style.textMuted
            font.pixelSize: Style.fontTitle
            horizontalAlignment: Text.AlignHCenter
        }
    }
}
