import QtQuick
import QtQuick.Controls.Basic

/// Scrolls a page so that what the keyboard goes to is in sight, with what stands right under it. Not for the mouse: what
/// is pressed mustn't move away under it.
Item {
    id: follower

    required property ScrollView scroll
    readonly property Flickable view: scroll.contentItem as Flickable
    readonly property Item focused: Window.activeFocusItem
    readonly property real margin: 52

    visible: false // no layout gives it room
    onFocusedChanged: Qt.callLater(show) // qmllint disable

    function show(): void {
        const item = focused
        const reason = item?.focusReason
        if (reason !== Qt.TabFocusReason && reason !== Qt.BacktabFocusReason || !holds(item))
            return
        const top = item.mapToItem(view.contentItem, 0, 0).y
        const lowest = Math.min(top - margin, top + item.height + margin - view.height)
        const highest = Math.max(top - margin, top + item.height + margin - view.height)
        // From the lowest place that shows its end to the highest that shows its beginning: the nearest to where one is.
        const wanted = Math.max(lowest, Math.min(highest, view.contentY))
        view.contentY = Math.max(0, Math.min(view.contentHeight - view.height, wanted))
    }

    function holds(item: Item): bool {
        for (let ancestor = item; ancestor; ancestor = ancestor.parent)
            if (ancestor === view.contentItem)
                return true
        return false
    }
}
