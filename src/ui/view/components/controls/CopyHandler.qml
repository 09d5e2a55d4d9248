import QtQuick

/// A right click on its item offers to copy a text. Costs a row of a list next to nothing until then.
TapHandler {
    id: handler

    required property string copied
    readonly property Component menu: Component { CopyMenu {} }

    acceptedButtons: Qt.RightButton
    onTapped: eventPoint => menu.createObject(parent, { copied }).popup(parent, eventPoint.position)
}
