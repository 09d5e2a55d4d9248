import QtQuick

/// Scrolls a view by the keys that whoever has the focus leaves over, or hands on by Keys.forwardTo.
Item {
    id: keys

    required property Flickable view
    /// How far an arrow key goes.
    property real step: 48

    Keys.onPressed: event => {
        const distance = reach(event.key)
        event.accepted = distance !== 0 && view.contentHeight > view.height
        if (event.accepted)
            scrollBy(distance)
    }

    function reach(key: int): real {
        const page = view.height * 0.9
        return ({
            [Qt.Key_Up]: -step,
            [Qt.Key_Down]: step,
            [Qt.Key_PageUp]: -page,
            [Qt.Key_PageDown]: page,
            [Qt.Key_Home]: -view.contentHeight,
            [Qt.Key_End]: view.contentHeight
        })[key] ?? 0
    }

    function scrollBy(distance: real): void {
        const first = view.originY
        const last = Math.max(first, first + view.contentHeight - view.height)
        view.contentY = Math.max(first, Math.min(last, view.contentY + distance))
    }
}
