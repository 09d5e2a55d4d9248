import QtQuick
import QtQuick.Controls.Basic
import com.tarvonet.backend
import "../.."

/// The private sessions in place of messages: who wrote last, and what.
ListView {
    id: list

    required property MessagesBackend messages

    clip: true
    spacing: Style.spacingTiny
    boundsBehavior: Flickable.StopAtBounds
    model: messages ? messages.sessionList : null
    ScrollBar.vertical: CustomScrollBar {}

    delegate: ListRow {
        required property int index
        required property string callsign
        required property string time
        required property string lastText
        required property int unread

        width: ListView.view.width - Style.spacingMedium
        objectName: "overview-" + callsign
        text: callsign
        note: time
        detail: lastText
        badge: unread
        onVisualFocusChanged: if (visualFocus) list.positionViewAtIndex(index, ListView.Contain) // qmllint disable unqualified
        onClicked: list.messages.openPrivateSession(callsign) // qmllint disable unqualified
    }
}
