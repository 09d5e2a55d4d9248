import QtQuick
import "../.."

/// A text of which the mouse selects a part, and Ctrl+C copies that. It costs a row of a list little: only where the pointer
/// is lies an editor, which draws in the text's place while something is selected. Meanwhile what it says stays.
AppText {
    id: shown

    /// In place of "color".
    property color ink: Style.textPrimary
    property TextEdit editor: null
    readonly property string selectedText: editor?.selectedText ?? ""

    color: selectedText.length > 0 ? "transparent" : ink

    function look(): void {
        if (hover.hovered && !editor) {
            editor = over.createObject(shown) as TextEdit
        } else if (editor && !hover.hovered && selectedText.length === 0) {
            editor.destroy()
            editor = null
        }
    }

    HoverHandler {
        id: hover

        cursorShape: Qt.IBeamCursor
        onHoveredChanged: shown.look()
    }

    readonly property Component over: Component {
        TextEdit {
            id: editing

            /// Had the keys before; it gets them back when nothing is selected any more.
            property Item before: null
            readonly property bool marked: selectedText.length > 0

            Accessible.ignored: true
            anchors.fill: parent
            clip: true
            readOnly: true
            selectByMouse: true
            activeFocusOnPress: false // a mere click takes no keys away
            textFormat: TextEdit.PlainText
            // qmllint disable unqualified
            wrapMode: shown.wrapMode
            horizontalAlignment: shown.effectiveHorizontalAlignment
            verticalAlignment: shown.verticalAlignment
            bottomPadding: shown.bottomPadding
            color: marked ? shown.ink : "transparent"
            selectionColor: Style.controlSelection
            selectedTextColor: Style.textActive
            font.family: shown.font.family
            font.weight: shown.font.weight
            font.pixelSize: shown.fontInfo.pixelSize // a text may have shrunk to fit
            // qmllint enable unqualified

            // Not when the whole window is left.
            onActiveFocusChanged: if (!activeFocus && Window.active) deselect()
            onMarkedChanged: {
                if (marked) {
                    before = Window.activeFocusItem
                    forceActiveFocus(Qt.MouseFocusReason)
                } else {
                    if (activeFocus)
                        before?.forceActiveFocus(Qt.OtherFocusReason)
                    shown.look()
                }
            }

            Binding on text {
                when: !editing.marked
                value: shown.text // qmllint disable unqualified
                restoreMode: Binding.RestoreNone
            }
        }
    }
}
