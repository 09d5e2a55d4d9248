import QtQuick
import QtQuick.Layouts
import "../.."

/// Folders under their caption, one a line. The box grows with them. Tab goes on to the next field.
FormField {
    id: setting

    property string name: ""
    property string value: ""
    property string hint: ""

    signal edited(string text)

    CustomTextArea {
        id: area

        objectName: setting.name + "Area"
        Layout.fillWidth: true
        Layout.preferredHeight: Math.max(84, implicitHeight)
        wrapMode: TextEdit.WrapAnywhere
        inputMethodHints: Qt.ImhNoPredictiveText | Qt.ImhNoAutoUppercase | Qt.ImhMultiLine
        text: setting.value
        onTextChanged: if (text !== setting.value) setting.edited(text)
        KeyNavigation.priority: KeyNavigation.BeforeItem
        Keys.onTabPressed: nextItemInFocusChain().forceActiveFocus(Qt.TabFocusReason)
        Keys.onBacktabPressed: nextItemInFocusChain(false).forceActiveFocus(Qt.BacktabFocusReason)
        Accessible.name: setting.label
    }

    FieldHint {
        objectName: setting.name + "Hint"
        text: setting.hint
    }
}
