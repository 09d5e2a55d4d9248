import QtQuick

/// A small window within a large one.
Item {
    id: sign

    property color color: "black"

    implicitWidth: 14
    implicitHeight: 12

    Rectangle {
        anchors.fill: parent
        radius: 2.5
        color: "transparent"
        border.width: 1.5
        border.color: sign.color
    }

    Rectangle {
        x: 7
        y: 2.5
        width: 4.5
        height: 4
        radius: 1
        color: sign.color
    }
}
