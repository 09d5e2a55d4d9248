import QtQuick
import "../.."

/// A button that does now this, now that. A click right behind a change, such as the second of a double click, was meant
/// for what it did before, and does nothing.
CustomButton {
    id: button

    /// Changes with what the button does; empty while it does nothing.
    property string meaning: ""
    property string earlierMeaning: ""
    readonly property bool settled: !settling.running

    signal meant()

    onMeaningChanged: {
        if (earlierMeaning.length > 0)
            settling.restart()
        earlierMeaning = meaning
    }
    onClicked: if (settled) meant()

    Timer {
        id: settling

        interval: Application.styleHints.mouseDoubleClickInterval
    }
}
