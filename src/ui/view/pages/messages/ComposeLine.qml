import QtQuick
import QtQuick.Layouts
import com.tarvonet.backend
import "../.."

/// The line that is being written. Where it goes is the active channel's affair. It hands on the keys that scroll the
/// messages.
GridLayout {
    id: compose

    required property MessagesBackend messages
    readonly property bool canSend: messages ? messages.activeChannelCanSend : false
    readonly property string channel: messages ? messages.activeChannel : ""

    /// Has the focus while nothing can be written.
    property Item elsewhere: null

    signal pageRequested(int count)
    signal newestRequested()

    columns: 2
    columnSpacing: Style.spacingSmall
    rowSpacing: 6
    Component.onCompleted: focusLine()
    onCanSendChanged: passFocus()
    onChannelChanged: focusLine()

    function focusLine(): void {
        (canSend ? line : elsewhere)?.forceActiveFocus()
    }

    /// The network comes and goes by itself: it takes the keys neither from another field nor from a sheet over the page.
    function passFocus(): void {
        if (canSend && elsewhere?.focus)
            line.focus = true
        else if (!canSend && line.focus && elsewhere)
            elsewhere.focus = true
    }

    function scroll(event: var): void {
        event.accepted = true
        if (event.key === Qt.Key_PageUp)
            pageRequested(-1)
        else if (event.key === Qt.Key_PageDown)
            pageRequested(1)
        else if (event.key === Qt.Key_End && event.modifiers & Qt.ControlModifier)
            newestRequested()
        else
            event.accepted = false
    }

    function send(): void {
        Qt.inputMethod.commit() // qmllint disable type
        if (!canSend || messages.composeBlocked)
            return
        const text = line.text
        messages.draftMessage = text
        if (channel === "RADIO")
            messages.sendRadioMessage(text)
        else if (channel === "WALLOP")
            messages.sendWallopMessage(text)
        else
            messages.sendPrivateMessage(channel, text)
    }

    CustomTextField {
        id: line

        objectName: "composeField"
        Layout.fillWidth: true
        enabled: compose.canSend
        text: compose.messages ? compose.messages.draftMessage : ""
        onTextEdited: if (compose.messages) compose.messages.draftMessage = text
        onAccepted: compose.send()
        Keys.onPressed: event => compose.scroll(event)
        Accessible.name: hint.text

        // In place of the field's own hint, which would take a callsign with markup in it for rich text.
        AppText {
            id: hint

            objectName: "composeHint"
            anchors.fill: parent
            anchors.leftMargin: line.leftPadding
            anchors.rightMargin: line.rightPadding
            clip: true
            visible: line.length === 0 && line.preeditText.length === 0
            text: compose.messages ? compose.messages.composePlaceholder : "--"
            color: Style.textMuted
            elide: Text.ElideRight
            maximumLineCount: 1
        }
    }

    CustomButton {
        objectName: "sendButton"
        Layout.preferredWidth: 88
        focusPolicy: Qt.TabFocus // the line keeps the focus
        primary: true
        enabled: compose.canSend && !compose.messages.composeBlocked
        text: qsTr("发送")
        tip: Shortcuts.tip("compose")
        onClicked: compose.send()
    }

    AppText {
        objectName: "composeNote"
        Layout.columnSpan: 2
        Layout.fillWidth: true
        Layout.leftMargin: Style.spacingMedium
        visible: text.length > 0
        clip: true
        text: compose.messages ? compose.messages.composeNote : ""
        color: Style.textWarning
        font.pixelSize: Style.fontSmall
        wrapMode: Text.Wrap
        maximumLineCount: 2
        elide: Text.ElideRight
    }
}
