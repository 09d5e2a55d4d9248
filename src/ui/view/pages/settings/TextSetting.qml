import QtQuick
import QtQuick.Layouts
import "../.."

/// One line of the settings under its caption, with what is wrong with it below.
FormField {
    id: setting

    property string name: ""
    property string value: ""
    property string hint: ""
    property alias inputMethodHints: field.inputMethodHints

    signal edited(string text)

    CustomTextField {
        id: field

        objectName: setting.name + "Field"
        Layout.fillWidth: true
        text: setting.value
        onTextEdited: setting.edited(text)
        Accessible.name: setting.label
    }

    FieldHint {
        objectName: setting.name + "Hint"
        text: setting.hint
    }
}
