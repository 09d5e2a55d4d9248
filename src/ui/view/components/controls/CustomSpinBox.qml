import QtQuick
import QtQuick.Controls.Basic
import "../.."

SpinBox {
    id: box

    implicitWidth: 140
    implicitHeight: Style.controlHeight
    editable: true
    font.family: Style.fontFamily
    font.pixelSize: Style.fontBody

    contentItem: TextInput {
        Accessible.role: Accessible.EditableText
        Accessible.name: box.Accessible.name
        text: box.displayText
        font: box.font
        color: box.enabled ? Style.textPrimary : Style.textMuted
        selectionColor: Style.controlSelection
        selectedTextColor: Style.textActive
        horizontalAlignment: Qt.AlignHCenter
        verticalAlignment: Qt.AlignVCenter
        readOnly: !box.editable
        validator: box.validator
        inputMethodHints: Qt.ImhFormattedNumbersOnly
        selectByMouse: true
        clip: true
    }
    up.indicator: SpinStep {
        x: box.width - width
        height: box.height
        text: "+"
        pressed: box.up.pressed
    }
    down.indicator: SpinStep {
        height: box.height
        text: "−"
        pressed: box.down.pressed
    }
    background: Rectangle {
        radius: Style.radiusButton
        color: box.enabled ? Style.controlBg : Style.controlBgDisabled
        border.width: box.activeFocus ? 2 : 1
        border.color: box.activeFocus ? Style.controlBorderActive : Style.controlBorder
    }

    component SpinStep: Item {
        id: step

        property alias text: label.text
        property bool pressed: false

        implicitWidth: 36

        AppText {
            id: label

            anchors.centerIn: parent
            color: step.pressed ? Style.controlBorderActive : Style.textCaption
            font.pixelSize: Style.fontTitle
        }
    }
}
