import QtQuick
import QtQuick.Controls.Basic
import "../.."

ScrollBar {
    id: bar

    padding: 2
    minimumSize: 0.06
    visible: policy !== ScrollBar.AlwaysOff && size < 1

    contentItem: Rectangle {
        implicitWidth: 6
        implicitHeight: 6
        radius: 3
        color: bar.pressed ? Style.textSecondary : Style.textMuted
        opacity: bar.active || bar.hovered ? 0.8 : 0.35

        Behavior on opacity { NumberAnimation { duration: Style.animationShort } }
    }
}
