import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import "../.."

/// Recent events, newest first: rows with "time", "title", "detail" and "tag". A reader who has scrolled down keeps his
/// place while new ones come.
ListView {
    id: list

    clip: true
    keyNavigationEnabled: false // RowKeys does it
    currentIndex: -1
    spacing: Style.spacingSmall
    boundsBehavior: Flickable.StopAtBounds
    activeFocusOnTab: count > 0
    Accessible.role: Accessible.List
    Accessible.name: qsTr("最近事件")
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

    Rectangle {
        parent: list // not one of the rows
        anchors.fill: parent
        visible: list.activeFocus && !rows.walking
        radius: Style.radiusSmall
        color: "transparent"
        border.width: 2
        border.color: Style.controlBorderActive
    }

    delegate: ColumnLayout {
        id: event

        required property int index
        required property string time
        required property string title
        required property string detail
        required property string tag

        readonly property string copied: `${time} ${title} ${detail} ${tag}`.trim()

        Accessible.role: Accessible.ListItem
        Accessible.name: copied
        Accessible.focusable: true
        width: ListView.view.width - Style.spacingMedium
        spacing: 2

        CopyHandler { copied: heading.selectedText || words.selectedText || event.copied }

        RowLayout {
            spacing: Style.spacingSmall

            AppText {
                text: event.time
                color: Style.textCaption
                font.pixelSize: Style.fontSmall
            }

            SelectableText {
                id: heading

                Layout.fillWidth: true
                text: event.title
                font.pixelSize: 13
                font.weight: Font.DemiBold
                elide: Text.ElideRight
            }

            Rectangle {
                implicitWidth: label.implicitWidth + 16
                implicitHeight: 20
                radius: 10
                color: Style.accentSoft
                visible: event.tag.length > 0

                AppText {
                    id: label

                    anchors.centerIn: parent
                    text: event.tag
                    color: Style.textCaption
                    font.pixelSize: 11
                }
            }
        }

        SelectableText {
            id: words

            Layout.fillWidth: true
            visible: text.length > 0
            text: event.detail
            ink: Style.textCaption
            font.pixelSize: Style.fontSmall
            wrapMode: Text.Wrap
            maximumLineCount: 3
            elide: Text.ElideRight
        }
    }

    AppText {
        anchors.centerIn: parent
        visible: list.count === 0
        text: qsTr("暂无事件")
        color: Style.textMuted
        font.pixelSize: 13
    }
}
