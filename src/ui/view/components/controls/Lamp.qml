import QtQuick
import "../.."

/// A small pill that is lit or dark.
Rectangle {
    id: lamp

    property string text: ""
    property bool lit: false
    property color litColor: Style.statusSuccess
    /// On an instrument's dark glass.
    property bool dark: false
    property int fontSize: Style.fontSmall

    Accessible.role: Accessible.Indicator
    Accessible.name: text
    Accessible.checkable: true
    Accessible.checked: lit
    Accessible.readOnly: true

    implicitWidth: Math.max(44, label.implicitWidth + 16)
    implicitHeight: 26
    radius: height / 2
    color: lit ? Qt.alpha(litColor, 0.18) : dark ? "transparent" : Style.controlBg
    border.width: 1
    border.color: lit ? litColor : dark ? Style.instrumentGrid : Style.controlBorder

    AppText {
        id: label

        Accessible.ignored: true
        anchors.centerIn: parent
        text: lamp.text
        color: lamp.lit ? (lamp.dark ? lamp.litColor : Qt.darker(lamp.litColor, 1.8)) : lamp.dark ? Style.instrumentDim : Style.textCaption
        font.pixelSize: lamp.fontSize
        font.weight: lamp.lit ? Font.DemiBold : Font.Normal
    }
}
