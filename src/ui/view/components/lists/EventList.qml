import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import "../.."

/// Recent events, newest first. A reader who has scrolled down keeps his place while new ones come.
ListView {
    id: list

    /// Has "recentEvents", maps with "time", "title", "detail" and "tag"; or null.
    required property var source
    /// The number of the newest event.
    property int newest: 0

    clip: true
    model: keyed.rows
    Component.onCompleted: show()
    onSourceChanged: show()
    spacing: Style.spacingSmall
    boundsBehavior: Flickable.StopAtBounds
    ScrollBar.vertical: CustomScrollBar {}

    function show(): void {
        const rows = (source?.recentEvents ?? []).map(row => ({
            key: 0,
            time: row?.time ?? "",
            title: row?.title ?? "",
            detail: row?.detail ?? "",
            tag: row?.tag ?? ""
        }))
        newest += arrived(rows)
        rows.forEach((row, index) => row.key = newest - index)
        keyed.follow(rows)
    }

    /// How many are new. Events have no key; but they come at the front and go at the end alone, so that the rest lines up
    /// with what is shown.
    function arrived(rows: var): int {
        let count = Math.max(0, rows.length - keyed.shown.length)
        while (count < rows.length && !continues(rows, count))
            count += 1
        return count
    }

    function continues(rows: var, from: int): bool {
        for (let i = from; i < rows.length; ++i)
            for (const part of ["time", "title", "detail", "tag"])
                if (rows[i][part] !== keyed.shown[i - from][part])
                    return false
        return true
    }

    KeyedList { id: keyed }

    Later {
        id: laterShow

        onTriggered: list.show()
    }

    Connections {
        target: list.source

        function onRecentEventsChanged(): void {
            laterShow.start()
        }
    }

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
