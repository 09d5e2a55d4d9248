import QtQuick
import com.tarvonet.backend
import "../.."

/// What a sound tells, for a moment.
Rectangle {
    id: sign

    required property SoundsBackend sounds
    /// On an instrument's dark glass.
    property bool dark: false
    readonly property color tone: Style.toneColor(sounds ? sounds.signTone : "")

    objectName: "soundSign"
    Accessible.role: Accessible.AlertMessage
    Accessible.name: label.text
    visible: label.text.length > 0
    implicitWidth: label.implicitWidth + 20
    implicitHeight: 22
    radius: height / 2
    color: Qt.alpha(tone, 0.16)
    border.width: 1
    border.color: tone

    AppText {
        id: label

        anchors.centerIn: parent
        text: sign.sounds ? sign.sounds.signText : ""
        color: sign.dark ? Style.instrumentLine : Qt.darker(sign.tone, 2)
        font.pixelSize: 11
        font.weight: Font.DemiBold
    }
}
