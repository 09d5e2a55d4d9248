import QtQuick
import QtQml.Models

/// The shortcuts at work, in the window that this stands in: those of `actions`, or all.
Instantiator {
    id: keys

    property bool enabled: true
    property var actions: []

    signal triggered(string action)

    model: Shortcuts.rows.filter(row => row.action.length > 0 && (actions.length === 0 || actions.includes(row.action)))

    Shortcut {
        required property var modelData

        enabled: keys.enabled // qmllint disable unqualified
        sequences: modelData.keys
        autoRepeat: false // nothing is switched to and fro while keys are held
        onActivated: keys.triggered(modelData.action) // qmllint disable unqualified
    }
}
