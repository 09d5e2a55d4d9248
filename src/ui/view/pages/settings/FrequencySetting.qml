import QtQuick
import QtQuick.Layouts
import "../.."

/// The pitch of a tone.
FormField {
    id: setting

    property string name: ""
    property real value: 0

    signal moved(int value)

    RowLayout {
        spacing: Style.spacingSmall

        CustomSpinBox {
            Layout.fillWidth: true
            Layout.minimumWidth: 112
            Layout.maximumWidth: 180
            objectName: setting.name + "Box"
            from: 100
            to: 4000
            stepSize: 10
            value: Math.round(setting.value)
            textFromValue: value => String(value) // without groups of three
            valueFromText: text => Number(text)
            onValueModified: setting.moved(value)
            Accessible.name: setting.label
        }

        AppText {
            text: "Hz"
            color: Style.textCaption
        }
    }
}
