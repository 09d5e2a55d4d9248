import QtQuick
import "../.."

/// Walks a list from row to row by the arrow keys that it is given by Keys.forwardTo, and copies the row by Ctrl+C. A row has
/// its "index" and tells as "copied" what is copied of it; one that is longer than the view is read on by steps.
Item {
    id: keys

    required property ListView view
    /// Where one has walked to; null for nowhere.
    property Item row: null
    readonly property bool walking: row !== null && row.activeFocus
    /// How far an arrow goes in a long row.
    readonly property real step: 48

    /// The view has moved, by keys.
    signal moved()

    Keys.onPressed: event => {
        event.accepted = true
        if (event.matches(StandardKey.Copy))
            copy()
        else if (event.key === Qt.Key_Up)
            walk(-1)
        else if (event.key === Qt.Key_Down)
            walk(1)
        else
            event.accepted = false
    }

    function copy(): void {
        if (!isInSight())
            enter(1)
        if (row)
            Clipboard.keep(row.copied) // qmllint disable
    }

    function walk(direction: int): void {
        if (!isInSight())
            enter(direction)
        else if (hidden(direction) > 1)
            scrollBy(direction * Math.min(hidden(direction), step))
        else
            go(row.index + direction, direction) // qmllint disable
    }

    function isInSight(): bool {
        return row !== null && row.y < view.contentY + view.height && row.y + row.height > view.contentY
    }

    /// How much of the row is beyond the edge.
    function hidden(direction: int): real {
        return direction > 0 ? row.y + row.height - view.contentY - view.height : view.contentY - row.y
    }

    /// To the row at the edge that the keys come from.
    function enter(direction: int): void {
        for (let away = 1; away < view.height; away += 4) {
            const y = view.contentY + (direction > 0 ? away : view.height - away)
            const index = view.indexAt(view.width / 2, y)
            if (index >= 0) {
                take(view.itemAtIndex(index), direction)
                return
            }
        }
    }

    function go(index: int, direction: int): void {
        if (index < 0 || index >= view.count) {
            scrollBy(direction * step) // what stands above the first row or below the last
            return
        }
        if (!view.itemAtIndex(index))
            view.positionViewAtIndex(index, ListView.Contain)
        take(view.itemAtIndex(index), direction)
    }

    /// Its beginning comes into sight, or its end, wherever one comes from.
    function take(next: Item, direction: int): void {
        row = next
        row.forceActiveFocus(Qt.OtherFocusReason)
        const bottom = row.y + row.height - view.height
        if (hidden(direction) > 0)
            scrollBy((direction > 0 ? Math.min(row.y, bottom) : Math.max(row.y, bottom)) - view.contentY)
    }

    function scrollBy(distance: real): void {
        const first = view.originY
        const last = Math.max(first, first + view.contentHeight - view.height)
        view.cancelFlick()
        view.contentY = Math.max(first, Math.min(last, view.contentY + distance))
        moved()
    }

    Rectangle {
        parent: keys.view.contentItem
        z: -1
        visible: keys.walking
        x: keys.row?.x ?? 0
        y: keys.row?.y ?? 0
        width: keys.row?.width ?? 0
        height: keys.row?.height ?? 0
        radius: Style.radiusSmall
        color: Qt.alpha(Style.controlBorderActive, 0.18)
    }
}
