import QtQuick
import QtQuick.Layouts
import com.tarvonet.backend
import "../.."

/// The active channel's title, the search in it, and its way into a file.
ColumnLayout {
    id: head

    required property MessagesBackend messages
    property int count: 0
    /// The channel shows messages.
    property bool searchable: true
    readonly property int held: messages ? messages.activeCount : 0
    readonly property int hiddenNews: messages ? messages.hiddenNews : 0
    readonly property string wanted: messages ? messages.searchText : ""
    property bool searching: wanted.length > 0
    readonly property string channel: messages ? messages.activeChannel : ""

    signal searchLeft()

    spacing: Style.spacingSmall
    onChannelChanged: searching = false
    onWantedChanged: if (!wanted && !field.activeFocus) searching = false // ended by what was sent

    function search(): void {
        if (!searchable)
            return
        searching = true
        field.forceActiveFocus(Qt.ShortcutFocusReason)
        field.selectAll()
    }

    function leaveSearch(): void {
        searching = false
        if (messages)
            messages.searchText = ""
        searchLeft()
    }

    Shortcut {
        enabled: head.searching
        sequences: ["Esc"]
        onActivated: head.leaveSearch()
        onActivatedAmbiguously: head.leaveSearch() // a card over the page is left by the next Escape
    }

    RowLayout {
        Layout.fillWidth: true
        spacing: Style.spacingSmall

        SectionTitle {
            Layout.fillWidth: true
            objectName: "channelTitle"
            title: head.messages ? head.messages.activeChannelTitle : "--"
            note: head.wanted ? qsTr("找到 %1 条").arg(head.count) : head.held > 0 ? qsTr("%1 条").arg(head.held) : ""
        }

        HeadButton {
            objectName: "searchButton"
            enabled: head.searchable && (head.count > 0 || head.searching)
            text: qsTr("查找")
            tip: Shortcuts.tip("search")
            onClicked: head.searching ? head.leaveSearch() : head.search()
        }

        HeadButton {
            objectName: "exportButton"
            enabled: head.held > 0
            text: qsTr("导出")
            tip: qsTr("保存为文本文件")
            onClicked: head.messages.requestExport()
        }
    }

    ReasonText {
        objectName: "exportNote"
        Layout.fillWidth: true
        visible: text.length > 0
        text: head.messages ? head.messages.exportNote : ""
        color: head.messages && head.messages.exportFailed ? Style.textError : Style.textCaption
        font.pixelSize: Style.fontSmall
    }

    RowLayout {
        Layout.fillWidth: true
        visible: head.searching
        spacing: Style.spacingSmall

        CustomTextField {
            id: field

            objectName: "searchField"
            Layout.fillWidth: true
            implicitHeight: 34
            placeholderText: qsTr("在此频道中查找")
            text: head.wanted
            onTextEdited: if (head.messages) head.messages.searchText = text
            Accessible.name: placeholderText
        }

        HeadButton {
            objectName: "hiddenNews"
            implicitHeight: 34
            visible: head.hiddenNews > 0
            text: qsTr("另有 %1 条新消息").arg(head.hiddenNews)
            tip: qsTr("结束查找")
            onClicked: head.leaveSearch()
        }
    }

    component HeadButton: CustomButton {
        implicitHeight: 28
        leftPadding: Style.spacingMedium
        rightPadding: Style.spacingMedium
        font.pixelSize: Style.fontSmall
    }
}
