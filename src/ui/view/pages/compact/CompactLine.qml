import QtQuick
import QtQuick.Layouts
import com.tarvonet.backend
import "../.."

/// The line that answers the last message.
GridLayout {
    id: compose

    required property CompactBackend compact
    readonly property bool canSend: compact ? compact.canSend : false
    readonly property bool writing: line.length > 0 || line.preeditText.length > 0
    readonly property bool noted: note.visible

    columns: 2
    columnSpacing: Style.spacingSmall
    rowSpacing: Style.spacingTiny
    onActiveFocusChanged: if (activeFocus) line.forceActiveFocus()
    onWritingChanged: if (compact) compact.writing = writing

    function send(): void {
        Qt.inputMethod.commit() // qmllint disable type
        compact?.send()
    }

    CustomTextField {
        id: line

        objectName: "compactLine"
        Layout.fillWidth: true
        implicitHeight: 34
        rightPadding: compose.writing ? aim.width + 2 * Style.spacingSmall : Style.spacingMedium
        color: Style.instrumentLine
        placeholderTextColor: Style.instrumentDim
        font.pixelSize: 13
        text: compose.compact ? compose.compact.draft : ""
        onTextEdited: if (compose.compact) compose.compact.draft = text
        onAccepted: compose.send()
        Accessible.name: hint.text

        background: Rectangle {
            radius: Style.radiusButton
            color: Style.instrumentGlass
            border.width: line.activeFocus ? 2 : 1
            border.color: line.activeFocus ? Style.controlBorderActive : Style.instrumentGrid
        }

        // In place of the field's own hint, which would take a callsign with markup in it for rich text.
        AppText {
            id: hint

            objectName: "compactHint"
            anchors.fill: parent
            anchors.leftMargin: line.leftPadding
            anchors.rightMargin: line.rightPadding
            clip: true
            visible: !compose.writing
            text: compose.compact ? compose.compact.placeholder : "--"
            color: Style.instrumentDim
            font.pixelSize: 13
            elide: Text.ElideRight
            maximumLineCount: 1
        }

        AppText {
            id: aim

            objectName: "compactTarget"
            anchors.right: parent.right
            anchors.rightMargin: Style.spacingSmall
            anchors.verticalCenter: parent.verticalCenter
            width: Math.min(implicitWidth, line.width / 2)
            visible: compose.writing
            text: compose.compact ? "→ " + compose.compact.targetName : ""
            color: Style.controlSelection
            font.pixelSize: Style.fontSmall
            elide: Text.ElideRight
            maximumLineCount: 1
        }
    }

    CustomButton {
        objectName: "compactSend"
        Layout.preferredWidth: 64
        implicitHeight: 34
        focusPolicy: Qt.TabFocus // the line keeps the focus
        primary: true
        accentColor: Style.controlBorderActive
        disabledColor: Style.instrumentGrid
        enabled: compose.canSend && line.length > 0
        text: qsTr("发送")
        font.pixelSize: 13
        onClicked: compose.send()
    }

    AppText {
        id: note

        objectName: "compactNote"
        Layout.columnSpan: 2
        Layout.fillWidth: true
        Layout.leftMargin: Style.spacingMedium
        visible: text.length > 0
        text: compose.compact ? compose.compact.note : ""
        color: Style.statusPending
        font.pixelSize: 11
        elide: Text.ElideRight
    }
}
