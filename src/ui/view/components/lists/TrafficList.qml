import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import "../.."

/// Rows of the traffic: callsign, type, where, how far, how high. A click picks one, and the arrow keys the next.
ListView {
    id: list

    property string emptyText: "--"
    property string pickedCallsign: ""

    signal picked(string callsign)
    /// The row so many further down is wanted.
    signal stepped(int rows)

    readonly property int rowHeight: 27

    clip: true
    boundsBehavior: Flickable.StopAtBounds
    keyNavigationEnabled: false // rows change places: the keys follow the picked callsign
    currentIndex: -1
    activeFocusOnTab: count > 0
    Accessible.role: Accessible.List
    Accessible.name: qsTr("交通目标")
    Keys.onPressed: event => {
        const rows = distance(event.key)
        event.accepted = rows !== 0 || event.matches(StandardKey.Copy)
        if (rows !== 0)
            stepped(rows)
        else if (event.accepted)
            Clipboard.keep(Window.activeFocusItem?.copied ?? "") // qmllint disable
    }
    ScrollBar.vertical: CustomScrollBar {}

    header: TrafficRow {
        callsign: qsTr("呼号")
        type: qsTr("机型")
        bearing: qsTr("方位")
        distance: qsTr("距离")
        altitude: qsTr("高度差")
        titles: true
        visible: list.count > 0 // qmllint disable unqualified
    }

    delegate: TrafficRow {
        required property var model

        objectName: "trafficRow"
        onMarkedChanged: takeKeys()
        Component.onCompleted: takeKeys()
        Accessible.role: Accessible.ListItem
        Accessible.name: `${callsign} ${type}`
        Accessible.description: `${bearing} ${distance} ${altitude}`
        Accessible.focusable: true
        Accessible.selectable: true
        Accessible.selected: marked
        marked: model.callsign !== "" && model.callsign === list.pickedCallsign // qmllint disable unqualified

        callsign: model.callsign || "--"
        type: model.type || "--"
        bearing: list.figure(model.bearing, v => Format.course(v) + "°") // qmllint disable unqualified
        distance: list.figure(model.distanceNm, v => Format.fixed(v, v < 99.95 ? 1 : 0) + " NM") // qmllint disable unqualified
        altitude: list.figure(model.relativeAltitudeFeet, v => (v >= 50 ? "+" : v <= -50 ? "−" : "") + Format.fixed(100 * Math.round(Math.abs(v) / 100), 0) + " ft") // qmllint disable unqualified

        TapHandler { onTapped: list.picked(parent.model.callsign) } // qmllint disable
    }

    AppText {
        anchors.centerIn: parent
        visible: list.count === 0
        text: list.emptyText
        color: Style.textMuted
        font.pixelSize: 13
    }

    function distance(key: int): int {
        const page = Math.max(1, Math.floor(height / rowHeight) - 2)
        return ({
            [Qt.Key_Up]: -1,
            [Qt.Key_Down]: 1,
            [Qt.Key_PageUp]: -page,
            [Qt.Key_PageDown]: page,
            [Qt.Key_Home]: -count,
            [Qt.Key_End]: count
        })[key] ?? 0
    }

    Rectangle {
        parent: list // not one of the rows
        anchors.fill: parent
        visible: list.activeFocus && Window.activeFocusItem === list
        radius: Style.radiusSmall
        color: "transparent"
        border.width: 2
        border.color: Style.controlBorderActive
    }

    function bringIntoView(row: int): void {
        if (row >= 0)
            positionViewAtIndex(row, ListView.Contain)
    }

    function figure(value: real, format: var): string {
        return Number.isFinite(value) && Math.abs(value) < 1e6 ? format(value) : "--"
    }

    component TrafficRow: RowLayout {
        id: row

        property string callsign
        property string type
        property string bearing
        property string distance
        property string altitude
        property bool titles: false
        property bool marked: false
        readonly property string copied: `${callsign} ${type} ${bearing} ${distance} ${altitude}`

        width: ListView.view?.width - Style.spacingMedium

        CopyHandler { copied: row.copied }
        /// A screen reader tells whom the keys have picked.
        function takeKeys(): void {
            if (marked && list.activeFocus) // qmllint disable unqualified
                forceActiveFocus(Qt.OtherFocusReason)
        }

        height: list.rowHeight // qmllint disable unqualified
        spacing: Style.spacingSmall

        AppText {
            Layout.fillWidth: true
            Layout.preferredWidth: 96
            text: row.callsign
            color: row.titles ? Style.textCaption : row.marked ? Style.controlBorderActive : Style.textPrimary
            font.pixelSize: row.titles ? 11 : 13
            font.weight: row.titles ? Font.Normal : row.marked ? Font.Black : Font.DemiBold
            fontSizeMode: Text.HorizontalFit
            minimumPixelSize: 10
            clip: true // an elided text of both directions may be wider than it should
            elide: Text.ElideRight
            maximumLineCount: 1
        }

        Cell {
            Layout.preferredWidth: 38
            text: row.type
            titles: row.titles
        }

        Cell {
            Layout.preferredWidth: 34
            visible: row.width > 320
            text: row.bearing
            titles: row.titles
        }

        Cell {
            Layout.preferredWidth: 56
            text: row.distance
            titles: row.titles
        }

        Cell {
            Layout.preferredWidth: 60
            text: row.altitude
            titles: row.titles
        }
    }

    component Cell: AppText {
        property bool titles: false

        Layout.fillWidth: true
        color: Style.textCaption
        font.pixelSize: titles ? 11 : Style.fontSmall
        horizontalAlignment: Text.AlignRight
        fontSizeMode: Text.HorizontalFit
        minimumPixelSize: 10
        clip: true
        elide: Text.ElideRight
        maximumLineCount: 1
    }
}
