import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import "../.."

/// Recent events, newest first: rows with "time", "title", "detail" and "tag". A reader who has scrolled down keeps his
/// place while new ones come.
ListView {
    id: list

    clip: true
    keyNavigationEnabled: false // the keys scroll
    spacing: Style.spacingSmall
    boundsBehavior: Flickable.StopAtBounds
    activeFocusOnTab: count > 0
    Accessible.role: Accessible.List
    Accessible.name: qsTr("最近事件")
    Keys.forwardTo: [keys]
    ScrollBar.vertical: CustomScrollBar {}

    ScrollKeys {
        id: keys

        view: list
    }

    Rectangle {
        parent: list // not one of the rows
        anchors.fill: parent
        anchors.margins: -4
        visible: list.activeFocus
        radius: Style.radiusSmall
        color: "transparent"
        border.width: 2
        border.color: Style.controlBorderActive
    }

    delegate: ColumnLayout {
        id: event

        required property string time
        required property string title
        required property string detail
        required property string tag

        width: ListView.view.width - Style.spacingMedium
        spacing: 2

        CopyHandler { copied: `${event.time} ${event.title} ${event.detail} ${event.tag}`.trim() }

        RowLayout {
            spacing: Style.spacingSmall

            AppText {
                text: event.time
                color: Style.textCaption
                font.pixelSize: Style.fontSmall
            }

            AppText {
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

        AppText {
            Layout.fillWidth: true
            visible: text.length > 0
            text: event.detail
            color: Style.textCaption
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
