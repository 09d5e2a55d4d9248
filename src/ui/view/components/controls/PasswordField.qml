import QtQuick
import "../.."

/// A line of dots, with a way to look at what they stand for.
CustomTextField {
    id: field

    property bool shown: false

    rightPadding: look.width + Style.spacingSmall
    echoMode: shown ? TextInput.Normal : TextInput.Password
    inputMethodHints: Qt.ImhSensitiveData | Qt.ImhNoPredictiveText | Qt.ImhNoAutoUppercase | (shown ? Qt.ImhNone : Qt.ImhHiddenText)

    Pressable {
        id: look

        objectName: "lookButton"
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        width: 52
        height: parent.height
        text: field.shown ? qsTr("隐藏") : qsTr("显示")
        Accessible.name: field.shown ? qsTr("隐藏密码") : qsTr("显示密码")
        onClicked: field.shown = !field.shown

        background: Rectangle {
            radius: Style.radiusButton
            color: "transparent"
            border.width: look.ringWidth
            border.color: look.ringColor
        }
        contentItem: AppText {
            text: look.text
            color: look.hovered ? Style.textPrimary : Style.textCaption
            font.pixelSize: Style.fontSmall
            horizontalAlignment: Text.AlignHCenter
        }
    }
}
