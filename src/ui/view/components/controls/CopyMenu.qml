import QtQuick
import QtQuick.Controls.Basic
import "../.."

/// One action: to copy a text. Goes when it is closed.
Menu {
    id: menu

    required property string copied

    width: 120
    padding: 4
    onClosed: destroy()

    MenuItem {
        id: copy

        objectName: "copyAction"
        text: qsTr("复制")
        height: 34
        enabled: menu.copied.length > 0
        onTriggered: Clipboard.keep(menu.copied)

        contentItem: AppText {
            text: copy.text
            leftPadding: Style.spacingSmall
            font.pixelSize: 13
        }
        background: Rectangle {
            radius: Style.radiusSmall
            color: copy.highlighted ? Style.accentSoft : "transparent"
        }
    }

    background: Rectangle {
        radius: Style.radiusSmall + 2
        color: Style.buttonText
        border.width: 1
        border.color: Style.textMuted
    }
}
