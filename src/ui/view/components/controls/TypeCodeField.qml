import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import com.tarvonet.backend
import "../.."

/// The aircraft type, with suggestions below while the pilot types: up and down choose, Enter takes, Escape closes.
CustomTextField {
    id: field

    required property ServerBackend server

    text: server ? server.typeCode : ""
    font.capitalization: Font.AllUppercase
    inputMethodHints: Qt.ImhPreferUppercase | Qt.ImhNoPredictiveText

    onTextEdited: {
        if (server)
            server.typeCode = text
        refresh()
    }
    // What an input method is still composing counts as typed.
    onPreeditTextChanged: if (activeFocus) refresh()
    onActiveFocusChanged: if (!activeFocus && server) server.refreshTypeCodeSuggestions("")
    Keys.onDownPressed: event => move(event, 1)
    Keys.onUpPressed: event => move(event, -1)
    Keys.onReturnPressed: event => take(event)
    Keys.onEnterPressed: event => take(event)
    Keys.onEscapePressed: event => {
        event.accepted = popup.visible
        if (server)
            server.refreshTypeCodeSuggestions("")
    }

    function refresh(): void {
        if (server)
            server.refreshTypeCodeSuggestions(text.slice(0, cursorPosition) + preeditText + text.slice(cursorPosition))
    }

    function move(event: var, step: int): void {
        event.accepted = popup.visible
        const count = list.count
        if (popup.visible)
            list.currentIndex = list.currentIndex < 0 && step < 0 ? count - 1 : (list.currentIndex + step + count) % count
    }

    function take(event: var): void {
        event.accepted = popup.visible && list.currentIndex >= 0
        if (event.accepted)
            apply(list.currentItem.designator)
    }

    function apply(designator: string): void {
        Qt.inputMethod.commit() // qmllint disable type
        if (server)
            server.applyTypeCodeSuggestion(designator)
    }

    Connections {
        target: field.server

        function onTypeCodeSuggestionsChanged(): void {
            list.currentIndex = -1
        }
    }

    Popup {
        id: popup

        objectName: "suggestionPopup"
        y: field.height + Style.spacingTiny
        width: Math.max(field.width, 280)
        padding: Style.spacingTiny
        focus: false
        closePolicy: Popup.NoAutoClose
        visible: field.activeFocus && list.count > 0
        height: Math.min(list.contentHeight, 5.5 * 44) + 2 * padding

        background: Rectangle {
            radius: Style.radiusButton
            color: Style.controlBg
            border.width: 1
            border.color: Style.controlBorder
        }
        ListView {
            id: list

            anchors.fill: parent
            clip: true
            model: field.server ? field.server.typeCodeSuggestionRows : null
            currentIndex: -1
            boundsBehavior: Flickable.StopAtBounds
            highlightMoveDuration: 0
            ScrollBar.vertical: CustomScrollBar {}

            delegate: AbstractButton {
                id: row

                required property string designator
                required property string title
                required property string detail
                required property int index

                width: ListView.view.width
                height: 44
                focusPolicy: Qt.NoFocus
                onClicked: field.apply(row.designator) // qmllint disable unqualified

                background: Rectangle {
                    radius: Style.radiusSmall
                    color: row.hovered || list.currentIndex === row.index ? Style.accentSoft : "transparent" // qmllint disable unqualified
                }
                contentItem: RowLayout {
                    spacing: Style.spacingMedium

                    AppText {
                        Layout.leftMargin: Style.spacingSmall
                        Layout.preferredWidth: 44
                        text: row.designator
                        font.weight: Font.DemiBold
                    }

                    ColumnLayout {
                        Layout.fillWidth: true
                        spacing: 0

                        AppText {
                            Layout.fillWidth: true
                            text: row.title
                            font.pixelSize: 13
                            elide: Text.ElideRight
                        }

                        AppText {
                            Layout.fillWidth: true
                            text: row.detail
                            color: Style.textCaption
                            font.pixelSize: 11
                            elide: Text.ElideRight
                        }
                    }
                }
            }
        }
    }
}
