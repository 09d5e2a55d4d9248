import QtQuick
import QtQuick.Layouts
import "../.."

/// One message: who to whom and when, and the text in a bubble; own ones on the right. A long text is folded.
Item {
    id: row

    required property int index
    required property string type
    required property string direction
    required property string directionLabel
    required property string from
    required property string to
    required property string time
    required property string message
    required property string meta
    required property string frequencies
    required property bool isDirect
    required property bool expanded

    /// The part of the row that can be seen. Tab goes no further than there: the keys that scroll do.
    property real sightTop: 0
    property real sightBottom: 0

    readonly property bool outgoing: direction === "out"
    readonly property bool quiet: direction === "system"
    readonly property string body: message.length > 0 ? message : meta
    readonly property string copied: body
    readonly property int foldedCharacters: 2000
    readonly property bool foldable: expanded || body.length > foldedCharacters || bodyText.truncated

    signal replyRequested(string from)
    signal foldRequested(bool expanded)

    implicitHeight: bubble.y + bubble.height
    Accessible.role: Accessible.ListItem
    Accessible.name: `${from} ${time} ${body.slice(0, foldedCharacters)}`.trim()
    Accessible.focusable: true

    function inSight(top: real, height: real): bool {
        return top >= sightTop && top + height <= sightBottom
    }

    Row {
        id: head

        /// What a callsign may take: whatever it is, the others stay in sight.
        readonly property real share: Math.max(60, row.width * 0.3)

        x: row.outgoing ? row.width - width : 0
        height: 20
        clip: true
        spacing: 6

        Rectangle {
            anchors.verticalCenter: parent.verticalCenter
            width: directionText.implicitWidth + 12
            height: 17
            radius: height / 2
            color: Style.accentSoft

            AppText {
                id: directionText

                anchors.centerIn: parent
                text: row.directionLabel
                color: Style.textCaption
                font.pixelSize: 10
            }
        }

        Pressable {
            id: sender

            objectName: "sender"
            enabled: row.direction === "in" && row.type !== "server"
            focusPolicy: row.inSight(head.y, head.height) ? Qt.TabFocus : Qt.NoFocus
            anchors.verticalCenter: parent.verticalCenter
            width: Math.min(Math.ceil(implicitWidth), head.share)
            padding: 0
            onClicked: row.replyRequested(row.from)
            Accessible.name: enabled ? qsTr("回复 %1").arg(row.from) : row.from

            background: FocusRing { visible: sender.visualFocus }

            contentItem: AppText {
                clip: true // an elided text of both directions may be wider than it should
                text: row.from
                color: sender.enabled ? Style.controlBorderActive : Style.textPrimary
                font.pixelSize: Style.fontSmall
                font.weight: Font.DemiBold
                font.underline: sender.enabled && sender.hovered
                elide: Text.ElideRight
                maximumLineCount: 1
            }
        }

        AppText {
            anchors.verticalCenter: parent.verticalCenter
            visible: target.visible
            text: "->"
            color: Style.textMuted
            font.pixelSize: Style.fontSmall
        }

        AppText {
            id: target

            anchors.verticalCenter: parent.verticalCenter
            width: Math.min(Math.ceil(implicitWidth), head.share)
            visible: text.length > 0
            clip: true
            text: row.to.length > 0 ? row.to : row.frequencies
            color: Style.textCaption
            font.pixelSize: Style.fontSmall
            elide: Text.ElideRight
            maximumLineCount: 1
        }

        AppText {
            anchors.verticalCenter: parent.verticalCenter
            text: row.time
            color: Style.textCaption
            font.pixelSize: Style.fontSmall
        }
    }

    Rectangle {
        id: bubble

        readonly property real maximumWidth: Math.min(row.width * 0.82, 760)

        x: row.outgoing ? row.width - width : 0
        y: head.height + Style.spacingTiny
        width: Math.min(maximumWidth, content.implicitWidth + 2 * Style.spacingMedium)
        height: content.implicitHeight + 2 * 9
        radius: Style.radiusButton
        color: row.outgoing ? Style.bubbleOutgoing : row.quiet ? Style.bubbleSystem : Style.bubbleIncoming
        border.width: row.outgoing || row.quiet ? 0 : 1
        border.color: row.isDirect || row.type === "selcal" ? Style.controlBorderActive : Style.controlBorder

        CopyHandler { copied: bodyText.selectedText || row.copied }

        ColumnLayout {
            id: content

            x: Style.spacingMedium
            y: 9
            width: parent.width - 2 * Style.spacingMedium
            spacing: 3

            SelectableText {
                id: bodyText

                objectName: "body"
                Layout.fillWidth: true
                // A mark stacked upon marks may reach beyond its line; not beyond the bubble.
                clip: true
                text: row.expanded ? row.body : row.body.slice(0, row.foldedCharacters)
                ink: row.outgoing ? Style.bubbleOutgoingText : Style.textPrimary
                wrapMode: Text.Wrap
                maximumLineCount: row.expanded ? 100000 : 10
                elide: Text.ElideRight
            }

            AppText {
                Layout.fillWidth: true
                visible: text.length > 0 && text !== row.to && text !== row.body
                text: row.meta
                color: row.outgoing ? Style.textMuted : Style.textCaption
                font.pixelSize: 11
                elide: Text.ElideRight
            }

            Pressable {
                id: fold

                objectName: "foldControl"
                visible: row.foldable
                text: row.expanded ? qsTr("收起") : qsTr("展开全文")
                focusPolicy: row.inSight(bubble.y + content.y + y, height) ? Qt.TabFocus : Qt.NoFocus
                padding: 0
                onClicked: row.foldRequested(!row.expanded)

                background: FocusRing { visible: fold.visualFocus }
                contentItem: AppText {
                    text: fold.text
                    color: row.outgoing ? Style.controlSelection : Style.controlBorderActive
                    font.pixelSize: Style.fontSmall
                    font.underline: fold.hovered
                }
            }
        }
    }

    component FocusRing: Item {
        Rectangle {
            anchors.fill: parent
            anchors.margins: -3
            radius: 5
            color: "transparent"
            border.width: 2
            border.color: Style.controlBorderActive
        }
    }
}
