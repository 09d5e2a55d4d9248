import QtQml
import QtQml.Models

/// A model that follows a list of maps, each with a "key", by small steps: what stays in the list keeps its delegate and
/// its place in the view.
QtObject {
    id: keyed

    readonly property ListModel rows: ListModel {}
    property var shown: []

    /// Returns how many rows are new.
    function follow(list: var): int {
        const keys = new Set(list.map(row => row.key))
        if (!shown.some(row => keys.has(row.key)))
            return replace(list)
        let added = 0
        for (let i = 0; i < list.length; ++i) {
            while (i < shown.length && !keys.has(shown[i].key))
                remove(i)
            if (i < shown.length && shown[i].key === list[i].key) {
                update(i, list[i])
            } else {
                rows.insert(i, list[i])
                shown.splice(i, 0, list[i])
                added += 1
            }
        }
        while (shown.length > list.length)
            remove(shown.length - 1)
        return added
    }

    function replace(list: var): int {
        rows.clear()
        rows.append(list)
        shown = list.slice()
        return list.length
    }

    function remove(index: int): void {
        rows.remove(index)
        shown.splice(index, 1)
    }

    function update(index: int, row: var): void {
        const old = shown[index]
        if (Object.keys(row).some(name => row[name] !== old[name]))
            rows.set(index, row)
        shown[index] = row
    }
}
