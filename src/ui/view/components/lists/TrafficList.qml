import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import "../.."

/// Rows of the traffic: callsign, type, where, how far, how high. A click picks one.
ListView {
    id: list

    property string emptyText: "--"
    property string pickedCallsign: ""

    signal picked(string callsign)

    readonly property int rowHeight: 27

    clip: true
    boundsBehavior: Flickable.StopAtBounds
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

        width: ListView.view?.width - Style.spacingMedium

        CopyHandler { copied: `${row.callsign} ${row.type} ${row.bearing} ${row.distance} ${row.altitude}` }
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
