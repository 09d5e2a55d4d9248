import QtQuick
import QtQml.Models

/// The shortcuts at work, in the window that this stands in.
Instantiator {
    id: keys

    property bool enabled: true

    signal triggered(string action)

    model: Shortcuts.rows.filter(row => row.action.length > 0)

    Shortcut {
        required property var modelData

        enabled: keys.enabled // qmllint disable unqualified
        sequences: modelData.keys
        onActivated: keys.triggered(modelData.action) // qmllint disable unqualified
    }
}
