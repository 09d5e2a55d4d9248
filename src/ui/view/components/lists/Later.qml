import QtQuick

/// Raises triggered() once after any number of start() within one turn of the event loop.
Timer {
    interval: 0
}
