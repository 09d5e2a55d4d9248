pragma Singleton
import QtQuick

/// The keys that work on every page: one row for each, in the order of the sheet. An action that is a section's key opens
/// that section.
QtObject {
    readonly property var rows: [
        { group: qsTr("页面"), action: "dashboard", keys: ["Ctrl+1"], text: qsTr("总览") },
        { group: qsTr("页面"), action: "simulator", keys: ["Ctrl+2"], text: qsTr("模拟器") },
        { group: qsTr("页面"), action: "server", keys: ["Ctrl+3"], text: qsTr("服务器") },
        { group: qsTr("页面"), action: "voice", keys: ["Ctrl+4"], text: qsTr("语音服务") },
        { group: qsTr("页面"), action: "messages", keys: ["Ctrl+5"], text: qsTr("消息") },
        { group: qsTr("页面"), action: "settings", keys: ["Ctrl+6"], text: qsTr("设置") },
        { group: qsTr("消息"), action: "compose", keys: ["Ctrl+L"], text: qsTr("写消息") },
        { group: qsTr("消息"), action: "lastSession", keys: ["Ctrl+R"], text: qsTr("最近的私聊") },
        { group: qsTr("消息"), action: "search", keys: ["Ctrl+F"], text: qsTr("在频道中查找") },
        { group: qsTr("程序"), action: "compact", keys: ["Ctrl+0"], text: qsTr("精简视图") },
        { group: qsTr("程序"), action: "mute", keys: ["Ctrl+M"], text: qsTr("提示音静音") },
        { group: qsTr("程序"), action: "help", keys: ["F1", "?"], text: qsTr("快捷键一览") },
        { group: qsTr("程序"), action: "", keys: ["Esc"], text: qsTr("关闭打开的窗口") }
    ]

    /// As tool tips show it: "Ctrl+1", "F1 / ?"; empty for what has no keys.
    function keysOf(action: string): string {
        return rows.find(row => row.action === action)?.keys.join(" / ") ?? ""
    }

    /// A tool tip: what the keys do, and the keys.
    function tip(action: string): string {
        const row = rows.find(candidate => candidate.action === action)
        return row ? row.text + "　" + keysOf(action) : ""
    }
}
