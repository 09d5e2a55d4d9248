import QtQuick
import QtQuick.Layouts
import "../.."

/// One out of a list, with what is wrong with it below.
FormField {
    id: setting

    property string name: ""
    property var choices: []
    property int chosen: -1
    property string hint: ""

    signal picked(int index)

    CustomComboBox {
        objectName: setting.name + "Box"
        Layout.fillWidth: true
        enabled: count > 0
        model: setting.choices
        currentIndex: setting.chosen
        displayText: currentIndex < 0 ? "--" : currentText
        onActivated: index => setting.picked(index)
        Accessible.name: setting.label
    }

    FieldHint {
        objectName: setting.name + "Hint"
        text: setting.hint
    }
}
