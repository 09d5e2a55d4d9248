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
    keyNavigationEnabled: false // RowKeys does it
    currentIndex: -1
    Keys.forwardTo: [rows, keys]
    ScrollBar.vertical: CustomScrollBar {}

    RowKeys {
        id: rows

        view: list
    }

    ScrollKeys {
        id: keys

        view: list
    }

    delegate: Row {
        id: event

        required property int index
        required property string time
        required property string text
        readonly property string copied: time + " " + text

        Accessible.role: Accessible.ListItem
        Accessible.name: copied
        Accessible.focusable: true

        width: ListView.view.width - Style.spacingMedium
        spacing: Style.spacingSmall

        CopyHandler { copied: words.selectedText || event.copied }

        AppText {
            id: clock

            text: event.time
            color: Style.textCaption
            font.pixelSize: Style.fontSmall
        }

        SelectableText {
            id: words

            width: event.width - clock.width - event.spacing
            text: event.text
            ink: text.startsWith("ERROR") ? Style.textError : Style.textPrimary
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
        color: Style.textCaption
        font.pixelSize: 13
    }
}
