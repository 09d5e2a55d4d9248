import QtQuick
import QtQuick.Layouts
import com.tarvonet.backend
import "../.."

/// The push-to-talk control: a click waits for the press that is to become it, Escape leaves it as it was.
FormField {
    id: setting

    required property VoiceSettingsBackend voice
    readonly property bool listening: voice ? voice.pttListening : false

    onListeningChanged: {
        if (listening)
            keys.forceActiveFocus()
        else
            settling.restart()
    }

    Timer {
        id: settling

        interval: 300
    }

    // It has the keys while it listens, and until the captured one is let go: it must not press the button.
    Item {
        id: keys

        Layout.fillWidth: true
        implicitHeight: button.implicitHeight
        Keys.onPressed: event => {
            if (!keys.isFocused())
                return
            if (setting.listening && event.key === Qt.Key_Escape)
                setting.voice.stopPttListening()
            event.accepted = setting.listening || event.key !== Qt.Key_Tab && event.key !== Qt.Key_Backtab
        }
        Keys.onReleased: event => {
            if (!keys.isFocused()) {
                // On the release: its press would be the one that is captured.
                if ((event.key === Qt.Key_Return || event.key === Qt.Key_Enter) && !event.isAutoRepeat)
                    button.clicked()
            } else if (!setting.listening) {
                button.forceActiveFocus(Qt.TabFocusReason)
            }
        }

        function isFocused(): bool {
            return keys.Window.activeFocusItem === keys
        }

        CustomButton {
            id: button

            objectName: "pttKeyButton"
            anchors.fill: parent
            Keys.enabled: false
            primary: setting.listening
            accentColor: setting.listening ? Style.textWarning : Style.primary
            text: setting.listening ? qsTr("请按下要使用的按键或按钮…") : setting.voice ? setting.voice.pttKey : "--"
            Accessible.name: setting.label + "：" + text
            onClicked: if (setting.voice) setting.voice.startPttListening()
        }

        // Takes the mouse button that is captured: it comes here a moment after the desktop has told of it.
        MouseArea {
            anchors.fill: parent
            acceptedButtons: Qt.AllButtons
            enabled: setting.listening || settling.running
        }
    }

    AppText {
        objectName: "pttKeyNote"
        Layout.fillWidth: true
        text: setting.listening ? qsTr("键盘、鼠标或手柄均可，按 Esc 取消") : qsTr("点击后按下键盘、鼠标或手柄上的任意键")
        color: Style.textCaption
        font.pixelSize: Style.fontSmall
        wrapMode: Text.Wrap
    }
}
