import QtQuick
import QtQuick.Layouts
import com.tarvonet.backend
import "../.."

/// The active channel's title, the search in it, and its way into a file.
ColumnLayout {
    id: head

    required property MessagesBackend messages
    property int count: 0
    readonly property string wanted: messages ? messages.searchText : ""
    property bool searching: wanted.length > 0
    readonly property string channel: messages ? messages.activeChannel : ""

    signal searchLeft()

    spacing: Style.spacingSmall
    onChannelChanged: searching = false

    function search(): void {
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

    RowLayout {
        Layout.fillWidth: true
        spacing: Style.spacingSmall

        SectionTitle {
            Layout.fillWidth: true
            objectName: "channelTitle"
            title: head.messages ? head.messages.activeChannelTitle : "--"
            note: head.wanted ? qsTr("找到 %1 条").arg(head.count) : head.count > 0 ? qsTr("%1 条").arg(head.count) : ""
        }

        HeadButton {
            objectName: "searchButton"
            enabled: head.count > 0 || head.searching
            text: qsTr("查找")
            tip: Shortcuts.tip("search")
            onClicked: head.searching ? head.leaveSearch() : head.search()
        }

        HeadButton {
            objectName: "exportButton"
            enabled: head.count > 0
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

    CustomTextField {
        id: field

        objectName: "searchField"
        Layout.fillWidth: true
        implicitHeight: 34
        visible: head.searching
        placeholderText: qsTr("在此频道中查找")
        text: head.wanted
        onTextEdited: if (head.messages) head.messages.searchText = text
        Keys.onEscapePressed: head.leaveSearch()
        Accessible.name: placeholderText
    }

    component HeadButton: CustomButton {
        implicitHeight: 28
        leftPadding: Style.spacingMedium
        rightPadding: Style.spacingMedium
        font.pixelSize: Style.fontSmall
    }
}
