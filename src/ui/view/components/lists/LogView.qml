import QtQuick
import QtQuick.Controls.Basic
import "../.."

/// A log that grows at its end. New lines are added to the text, never the whole laid out again; it stays at the end
/// unless the reader has scrolled up.
Rectangle {
    id: view

    /// Has "serverLog" and the signals "logLineAdded(line)" and "logCleared()"; or null.
    required property var source
    /// The text is taken afresh when it has outgrown the source's own limit by a good deal.
    readonly property int refreshAfter: 2500
    property int lines: 0
    readonly property alias text: area.text
    property alias contentY: flick.contentY
    readonly property bool atEnd: flick.contentY >= flick.contentHeight - flick.height - 8
    property bool follow: true

    radius: Style.radiusButton
    color: Style.controlBg
    border.width: area.activeFocus ? 2 : 1
    border.color: area.activeFocus ? Style.controlBorderActive : Style.controlBorder

    Component.onCompleted: reload()
    onSourceChanged: reload()

    function reload(): void {
        const text = source?.serverLog ?? ""
        area.text = text
        lines = text.length > 0 ? text.split("\n").length : 0
        follow = true
        toEnd()
    }

    function toEnd(): void {
        flick.contentY = Math.max(0, flick.contentHeight - flick.height)
    }

    function add(line: string): void {
        follow = atEnd
        if (lines >= refreshAfter) {
            reload()
            return
        }
        area.append(line)
        lines += 1
    }

    Connections {
        target: view.source

        function onLogLineAdded(line: string): void {
            view.add(line)
        }
        function onLogCleared(): void {
            view.reload()
        }
    }

    ScrollKeys {
        id: keys

        view: flick
    }

    Flickable {
        id: flick

        anchors.fill: parent
        anchors.margins: 2
        clip: true
        contentWidth: width
        contentHeight: area.implicitHeight
        onContentHeightChanged: if (view.follow) view.toEnd()
        onHeightChanged: if (view.follow) view.toEnd()
        boundsBehavior: Flickable.StopAtBounds
        ScrollBar.vertical: CustomScrollBar {}

        // Not TextArea.flickable: that follows the text cursor, and so every new line.
        CustomTextArea {
            Accessible.name: qsTr("日志")
            id: area

            width: flick.width
            readOnly: true
            Keys.forwardTo: [keys]
            font.pixelSize: Style.fontSmall
            background: null
        }
    }

    AppText {
        anchors.centerIn: parent
        visible: area.length === 0
        text: qsTr("暂无日志")
        color: Style.textMuted
        font.pixelSize: 13
    }
}
