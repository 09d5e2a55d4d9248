import QtQuick
import "../.."

/// How many are waiting: hidden at 0, "99+" above 99.
Rectangle {
    id: badge

    property int count: 0

    visible: count > 0
    implicitWidth: Math.max(implicitHeight, label.implicitWidth + 12)
    implicitHeight: 20
    radius: height / 2
    color: Style.endsSession

    AppText {
        id: label

        anchors.centerIn: parent
        text: badge.count > 99 ? "99+" : badge.count
        color: Style.buttonText
        font.pixelSize: 11
        font.weight: Font.DemiBold
    }
}
