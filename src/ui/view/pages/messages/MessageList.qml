import QtQuick
import QtQuick.Controls.Basic
import com.tarvonet.backend
import "../.."

/// The active channel's messages. Stays at the newest, unless the reader has scrolled up, by mouse or by keys.
Control {
    id: view

    required property MessagesBackend messages
    readonly property string channel: messages ? messages.activeChannel : ""
    property bool follow: true
    /// How many have come since the reader scrolled up.
    property int missed: 0
    readonly property int count: list.count
    readonly property alias list: list
    /// The private sessions stand in place of messages.
    readonly property alias overview: sessions.visible
    /// Pixels that stay in sight from one screenful to the next.
    readonly property real line: 60

    focusPolicy: Qt.TabFocus
    Accessible.name: qsTr("消息列表")
    Keys.forwardTo: [rows]
    Keys.onPressed: event => {
        event.accepted = true
        if (event.key === Qt.Key_PageUp)
            page(-1)
        else if (event.key === Qt.Key_PageDown)
            page(1)
        else if (event.key === Qt.Key_Home)
            toStart()
        else if (event.key === Qt.Key_End)
            toEnd()
        else
            event.accepted = false
    }
    Component.onCompleted: toEnd()
    onMessagesChanged: toEnd()
    onChannelChanged: toEnd()

    function toEnd(): void {
        follow = true
        missed = 0
        list.positionViewAtEnd()
    }

    function toStart(): void {
        list.cancelFlick()
        list.positionViewAtBeginning()
        look()
    }

    /// A screenful, with some of the last one left in sight.
    function page(count: int): void {
        scrollBy(count * Math.max(line, list.height - line))
    }

    function scrollBy(distance: real): void {
        list.cancelFlick()
        const end = list.originY + list.contentHeight - list.height
        list.contentY = Math.max(list.originY, Math.min(end, list.contentY + distance))
        look()
    }

    /// After a movement by the reader.
    function look(): void {
        follow = list.contentY >= list.originY + list.contentHeight - list.height - 8
        if (follow)
            missed = 0
    }

    function stay(): void {
        if (follow)
            list.positionViewAtEnd()
    }

    /// What the pilot has just sent comes into sight.
    function isOwn(row: int): bool {
        return view.messages.isOwnShown(row)
    }

    /// Not while the list still lays itself out.
    function later(action: var): void {
        Qt.callLater(action) // qmllint disable
    }

    Connections {
        target: list.model

        function onRowsInserted(parent: var, first: int, last: int): void {
            if (view.follow || view.isOwn(last))
                view.later(view.follow ? view.stay : view.toEnd)
            else
                view.missed += last - first + 1
        }
    }

    ListView {
        id: list

        objectName: "messageList"
        anchors.fill: parent
        clip: true
        model: view.messages ? view.messages.shownMessages : null
        spacing: Style.spacingMedium
        boundsBehavior: Flickable.StopAtBounds
        cacheBuffer: 600
        keyNavigationEnabled: false // RowKeys does it
        currentIndex: -1
        onContentYChanged: if (moving || bar.pressed) view.look()
        onMovementEnded: view.look()
        onHeightChanged: view.later(view.stay)
        onWidthChanged: view.later(view.stay)
        onContentHeightChanged: view.later(view.follow ? view.stay : view.look)
        ScrollBar.vertical: CustomScrollBar { id: bar }

        RowKeys {
            id: rows

            view: list
            onMoved: view.look()
        }

        section.property: "day"
        section.delegate: Item {
            id: day

            required property string section

            width: ListView.view.width
            height: 28

            AppText {
                anchors.centerIn: parent
                text: day.section
                color: Style.textCaption
                font.pixelSize: 11
            }
        }

        delegate: MessageBubble {
            required property var model

            width: ListView.view.width - Style.spacingMedium
            sightTop: list.contentY - y // qmllint disable unqualified
            sightBottom: sightTop + list.height // qmllint disable unqualified
            onReplyRequested: from => view.messages.prepareReply(from) // qmllint disable unqualified
            onFoldRequested: wanted => {
                if (wanted)
                    view.follow = false // what is being read stays in sight; qmllint disable unqualified
                model.expanded = wanted
            }
        }
    }

    SessionOverview {
        id: sessions

        objectName: "sessionOverview"
        anchors.fill: parent
        visible: view.channel === "PRIVATE" && count > 0
        messages: view.messages
    }

    EmptyHint {
        anchors.centerIn: parent
        width: Math.min(parent.width - 2 * Style.spacingLarge, 360)
        visible: list.count === 0 && !sessions.visible
        readonly property bool searched: view.messages ? view.messages.searchText.length > 0 : false

        title: searched ? qsTr("没有找到") : qsTr("当前频道暂无消息")
        detail: searched ? qsTr("按 Esc 结束查找") : view.hintFor(view.channel)
    }

    Pressable {
        id: newest

        objectName: "newestButton"
        anchors.horizontalCenter: parent.horizontalCenter
        anchors.bottom: parent.bottom
        anchors.bottomMargin: Style.spacingSmall
        height: 30
        leftPadding: Style.spacingMedium
        rightPadding: Style.spacingMedium
        visible: !view.follow && list.count > 0
        text: view.missed > 0 ? qsTr("%1 条新消息 ↓").arg(view.missed) : qsTr("回到最新 ↓")
        focusPolicy: Qt.TabFocus
        onClicked: {
            if (activeFocus) // it goes now
                view.forceActiveFocus(Qt.TabFocusReason)
            view.toEnd()
        }

        background: Rectangle {
            radius: height / 2
            color: newest.hovered ? Qt.lighter(Style.primary, 1.25) : Style.primary
            border.width: newest.visualFocus ? 2 : 0
            border.color: Style.controlBorderActive
        }
        contentItem: AppText {
            text: newest.text
            color: Style.buttonText
            font.pixelSize: Style.fontSmall
        }
    }

    Rectangle {
        anchors.fill: parent
        anchors.topMargin: -5 // at the sides the card would cut it
        anchors.bottomMargin: -5
        visible: view.visualFocus
        radius: Style.radiusSmall
        color: "transparent"
        border.width: 2
        border.color: Style.controlBorderActive
    }

    function hintFor(channel: string): string {
        return ({
            SERVER: qsTr("服务器文本和系统通知会出现在这里"),
            RADIO: qsTr("当前频率上的文本会出现在这里"),
            PRIVATE: qsTr("从左侧选择一个私聊，或点击附近管制开始对话"),
            BROADCAST: qsTr("管理员的全网广播会出现在这里"),
            WALLOP: qsTr("向在线管理员报告问题"),
            SELCAL: qsTr("收到的 SELCAL 呼叫会出现在这里")
        })[channel] ?? ""
    }
}
