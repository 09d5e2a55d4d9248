import QtQuick
import "../.."

/// One aircraft on the plot: a diamond (filled when near); when `measured` a stroke where it heads. Where there is room
/// also its callsign, to which a line leads when there is none beside it, and its height in hundreds of feet above or below.
Item {
    id: symbol

    required property string callsign
    required property string type
    /// Nautical miles; NaN for one without a position, which isn't drawn.
    required property real distanceNm
    required property real bearing
    required property real relativeAltitudeFeet
    required property real heading
    property real upHeading: 0
    property real range: 10
    property real radius: 100
    property bool measured: true
    /// By the pilot: ringed, and the first to be labelled.
    property bool picked: false
    /// The lowest is labelled first.
    readonly property real turn: picked ? -1 : distanceNm
    /// What the callsign and the height take; 0 for none.
    readonly property real nameWidth: outside && !picked || callsign === "" ? 0 : name.width
    readonly property real altitudeWidth: outside || !measured || altitude.text === "" ? 0 : altitude.width
    readonly property bool below: relativeAltitudeFeet < 0
    readonly property string heightText: hundreds(relativeAltitudeFeet)
    property bool roomForName: false
    property bool roomForAltitude: false
    readonly property bool placed: Number.isFinite(distanceNm)
    readonly property real angle: (bearing - upHeading) * Math.PI / 180
    readonly property bool outside: !(distanceNm <= range)
    readonly property real away: Math.min(1, distanceNm / range) * radius
    readonly property bool near: distanceNm < 6 && Math.abs(relativeAltitudeFeet) < 1200
    /// A label that is no farther off needs no line.
    readonly property real beside: 14
    readonly property color tint: near ? Style.instrumentOwn : Style.instrumentTraffic

    x: placed ? away * Math.sin(angle) : 0
    y: placed ? -away * Math.cos(angle) : 0
    visible: placed
    opacity: outside && !picked ? 0.45 : 1

    Item {
        visible: (symbol.measured || symbol.near) && !symbol.outside && Number.isFinite(symbol.heading)
        rotation: visible ? symbol.heading - symbol.upHeading : 0

        Rectangle {
            x: -0.75
            y: -17
            width: 1.5
            height: 12
            color: symbol.tint
            antialiasing: true
        }
    }

    Rectangle {
        x: -width / 2
        y: -height / 2
        width: symbol.outside || !symbol.measured ? 6 : 8.5
        height: width
        rotation: 45
        color: symbol.near ? symbol.tint : Style.instrumentGlass
        border.width: 1.5
        border.color: symbol.tint
        antialiasing: true
    }

    Rectangle {
        objectName: "pickedRing"
        visible: symbol.picked
        x: -width / 2
        y: -height / 2
        width: 22
        height: width
        radius: width / 2
        color: "transparent"
        border.width: 1.5
        border.color: Style.instrumentLine
    }

    Rectangle {
        id: leader

        objectName: "radarLeader"
        property real reach: 0

        visible: name.visible && reach > symbol.beside
        x: 8
        width: reach - x - 1
        height: 1
        transform: Rotation {
            id: leaderTurn

            origin.x: -leader.x
        }
        color: Style.instrumentDim
        antialiasing: true
    }

    LabelText {
        id: altitude

        objectName: "radarAltitude"
        visible: symbol.roomForAltitude && symbol.altitudeWidth > 0
        x: -width / 2
        y: symbol.below ? 7 : -height - 7
        width: Math.ceil(implicitWidth)
        text: symbol.heightText
        color: symbol.tint
    }

    LabelText {
        id: name

        objectName: "radarName"
        visible: symbol.roomForName && symbol.nameWidth > 0
        width: Math.min(Math.ceil(implicitWidth), 90)
        clip: true // an elided text of both directions may be wider than it should
        text: symbol.callsign.slice(0, 40) // more than fits, and never much to lay out
        color: Style.instrumentLine
        elide: Text.ElideRight
        maximumLineCount: 1
    }

    component LabelText: AppText {
        height: Style.radarLabelHeight
        font.pixelSize: 11
        style: Text.Outline // legible over a farther symbol
        styleColor: Style.instrumentGlass
    }

    /// The callsign's upper left corner, NaN without room for it, and whether there is room for the height.
    function label(nameX: real, nameY: real, withAltitude: bool): void {
        roomForAltitude = withAltitude
        roomForName = Number.isFinite(nameX)
        if (!roomForName)
            return
        name.x = nameX
        name.y = nameY
        const endX = Math.max(nameX, Math.min(0, nameX + name.width))
        const endY = Math.max(nameY, Math.min(0, nameY + name.height))
        leader.reach = Math.hypot(endX, endY)
        leaderTurn.angle = Math.atan2(endY, endX) * 180 / Math.PI
    }

    function hundreds(feet: real): string {
        if (!Number.isFinite(feet) || Math.abs(feet) > 99949)
            return ""
        const shown = Math.round(Math.abs(feet) / 100)
        return (shown === 0 ? "" : feet < 0 ? "−" : "+") + String(shown).padStart(2, "0")
    }
}
