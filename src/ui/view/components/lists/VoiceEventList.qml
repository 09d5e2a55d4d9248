import QtQuick
import QtQuick.Controls.Basic
import "../.."

/// Events of the voice session, newest first: rows with "time" and "text".
ListView {
    id: list

    Accessible.role: Accessible.List
    Accessible.name: qsTr("事件日志")
    clip: true
    spacing: Style.spacingTiny
    boundsBehavior: Flickable.StopAtBounds
    activeFocusOnTab: count > 0
    keyNavigationEnabled: false // the keys scroll
    Keys.forwardTo: [keys]
    ScrollBar.vertical: CustomScrollBar {}

    ScrollKeys {
        id: keys

        view: list
    }

    delegate: Row {
        required property string time
        required property string text

        width: ListView.view.width - Style.spacingMedium
        spacing: Style.spacingSmall

        CopyHandler { copied: parent.time + " " + parent.text } // qmllint disable

        AppText {
            id: clock

            text: parent.time
            color: Style.textSecondary
            font.pixelSize: Style.fontSmall
        }

        AppText {
            width: parent.width - clock.width - parent.spacing
            text: parent.text
            color: text.startsWith("ERROR") ? Style.textError : Style.textPrimary
            font.pixelSize: Style.fontSmall
            wrapMode: Text.Wrap
            maximumLineCount: 4
            elide: Text.ElideRight
        }
    }

    AppText {
        anchors.centerIn: parent
        visible: list.count === 0
        text: qsTr("暂无事件")
        color: Style.textSecondary
        font.pixelSize: 13
    }
}
