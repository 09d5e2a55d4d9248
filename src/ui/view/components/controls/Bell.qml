import QtQuick

/// A bell, crossed out when it is silent.
Item {
    id: bell

    property color color: "black"
    property bool silent: false

    implicitWidth: 14
    implicitHeight: 15

    Rectangle { // the dome
        x: 2.5
        y: 1
        width: 9
        height: 10
        radius: 4.5
        color: bell.color
    }

    Rectangle {
        x: 2.5
        y: 7
        width: 9
        height: 4
        color: bell.color
    }

    Rectangle { // the rim
        x: 0.5
        y: 10
        width: 13
        height: 2
        radius: 1
        color: bell.color
    }

    Rectangle { // the clapper
        x: 5
        y: 12.5
        width: 4
        height: 2
        radius: 1
        color: bell.color
    }

    Rectangle {
        anchors.centerIn: parent
        visible: bell.silent
        width: 18
        height: 2
        radius: 1
        rotation: 45
        antialiasing: true
        color: bell.color
    }
}
