import QtQuick
import "../.."

/// A small window beside a simulator: without a frame, on top of all, and dragged by any place that is no control.
Window {
    id: floating

    // Qt's own name for it: a window that opens takes the keyboard from nobody.
    readonly property bool _q_showWithoutActivating: true

    flags: Qt.Tool | Qt.FramelessWindowHint | Qt.WindowStaysOnTopHint
    transientParent: null // it stays when the main window is minimised
    color: Style.instrumentBezel

    DragHandler {
        target: null
        grabPermissions: PointerHandler.CanTakeOverFromHandlersOfDifferentType // never from the button that is held
        // Where the window manager's move ends Qt tells of another drag, which was pressed nowhere; moved on for it, the
        // window would stick to the pointer.
        onActiveChanged: if (active && centroid.pressPosition !== Qt.point(0, 0)) floating.startSystemMove()
    }
}
