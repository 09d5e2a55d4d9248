import QtQml
import QtQml.Models

/// A model of as many empty rows as there are things to show. It grows and shrinks at its end alone: with a plain number
/// as its model a view drops every delegate, and its place, whenever the number changes.
QtObject {
    id: slots

    property int count: 0
    readonly property ListModel rows: ListModel {}

    Component.onCompleted: fit()
    onCountChanged: fit()

    function fit(): void {
        while (rows.count < count)
            rows.append({ slot: rows.count })
        if (rows.count > count)
            rows.remove(count, rows.count - count)
    }
}
