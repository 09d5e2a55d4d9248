import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import "../.."

/// Recent events, newest first: rows with "time", "title", "detail" and "tag". A reader who has scrolled down keeps his
/// place while new ones come.
ListView {
    id: list

    clip: true
    spacing: Style.spacingSmall
    boundsBehavior: Flickable.StopAtBounds
    ScrollBar.vertical: CustomScrollBar {}

    delegate: ColumnLayout {
        id: event

        required property string time
        required property string title
        required property string detail
        required property string tag

        width: ListView.view.width - Style.spacingMedium
        spacing: 2

        RowLayout {
            spacing: Style.spacingSmall

            AppText {
                text: event.time
                color: Style.textMuted
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
                    color: Style.textSecondary
                    font.pixelSize: 11
                }
            }
        }

        AppText {
            Layout.fillWidth: true
            visible: text.length > 0
            text: event.detail
            color: Style.textSecondary
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
