import QtQuick
import QtQuick.Layouts
import "../.."

/// A field with its button. What is typed is checked at each key: the button waits until it is right, and a hint says
/// what is wrong.
GridLayout {
    id: entry

    property alias placeholder: field.placeholderText
    property string buttonText: ""
    property string name: ""
    /// What an input method is composing counts as typed.
    readonly property string typed: plain(field.text.slice(0, field.cursorPosition) + field.preeditText + field.text.slice(field.cursorPosition))
    /// What the owner says to `typed`: { value } with the text to send, or { hint } with what is wrong. With `unfinished`
    /// nothing is wrong as yet, and the hint waits until the pilot has done typing.
    property var verdict: ({})
    property bool done: false
    readonly property bool acceptable: typed.length > 0 && (verdict.value ?? "") !== ""

    readonly property bool told: typed.length > 0 && (done || !field.activeFocus || !(verdict.unfinished ?? false))
    readonly property bool wide: width > 320

    signal submitted(string value)

    onTypedChanged: done = false

    columns: 2
    columnSpacing: Style.spacingSmall
    rowSpacing: Style.spacingTiny

    CustomTextField {
        id: field

        objectName: entry.name + "Field"
        Accessible.name: placeholderText
        Layout.row: 0
        Layout.column: 0
        Layout.fillWidth: true
        Layout.columnSpan: entry.wide ? 1 : 2
        font.pixelSize: 13
        maximumLength: 32
        inputMethodHints: Qt.ImhPreferNumbers | Qt.ImhNoPredictiveText
        onAccepted: entry.submit()
    }

    CustomButton {
        id: button

        objectName: entry.name + "Button"
        Layout.row: entry.wide ? 0 : 1
        Layout.column: 1
        implicitHeight: entry.wide ? Style.controlHeight : 36
        focusPolicy: Qt.TabFocus // a click leaves the focus where the next figure is typed
        leftPadding: Style.spacingMedium
        rightPadding: Style.spacingMedium
        primary: true
        enabled: entry.acceptable
        text: entry.buttonText
        font.pixelSize: 13
        onClicked: entry.submit()
    }

    AppText {
        objectName: entry.name + "Hint"
        Layout.row: 1
        Layout.column: 0
        Layout.columnSpan: entry.wide ? 2 : 1
        Layout.fillWidth: true
        Layout.preferredHeight: entry.wide ? 18 : 36
        text: entry.told ? entry.verdict.hint ?? "" : ""
        color: Style.textError
        font.pixelSize: Style.fontSmall
        wrapMode: Text.Wrap
    }

    /// Full-width figures and points, as an input method leaves them, are read as plain ones.
    function plain(text: string): string {
        return text.trim().replace(/[０-９]/g, digit => String.fromCharCode(digit.charCodeAt(0) - 0xfee0)).replace(/[．。]/g, ".")
    }

    function submit(): void {
        Qt.inputMethod.commit() // qmllint disable type
        field.forceActiveFocus()
        done = !acceptable
        if (done)
            return
        const value = verdict.value
        field.clear()
        submitted(value)
    }
}
