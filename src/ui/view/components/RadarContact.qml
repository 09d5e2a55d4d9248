import QtQuick
import ".."

/// One aircraft on the plot: a diamond (filled when near), its callsign when `named`; when `measured`
/// a stroke where it heads and its height in hundreds of feet above or below.
Item {
    id: symbol

    /// A row of the plot's contacts; null for none.
    property var contact: null
    property real upHeading: 0
    property real range: 10
    property real radius: 100
    property bool named: false
    property bool measured: true
    /// Half the plot's width: how far a callsign may reach.
    property real room: 160
    readonly property real distance: contact?.distanceNm ?? 0
    readonly property real angle: ((contact?.bearing ?? 0) - upHeading) * Math.PI / 180
    readonly property bool outside: distance > range
    readonly property real away: Math.min(1, distance / range) * radius
    readonly property real relative: contact?.relativeAltitudeFeet ?? NaN
    readonly property bool near: distance < 6 && Math.abs(relative) < 1200
    readonly property color tint: near ? Style.instrumentOwn : Style.instrumentTraffic

    x: away * Math.sin(angle)
    y: -away * Math.cos(angle)
    visible: contact !== null
    opacity: outside ? 0.45 : 1

    Item {
        visible: (symbol.measured || symbol.near) && !symbol.outside && Number.isFinite(symbol.contact?.heading ?? NaN)
        rotation: (symbol.contact?.heading ?? 0) - symbol.upHeading

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

    AppText {
        visible: symbol.measured && text.length > 0 && !symbol.outside
        x: -width / 2
        y: symbol.relative < 0 ? 6 : -height - 6
        text: symbol.hundreds(symbol.relative)
        color: symbol.tint
        font.pixelSize: 11
    }

    AppText {
        visible: symbol.named && !symbol.outside
        // On the side away from the middle, as long as it fits there.
        x: symbol.x >= 0 === Math.abs(symbol.x) + width + 20 < symbol.room ? 11 : -width - 11
        y: -height / 2
        width: Math.min(Math.ceil(implicitWidth), 90)
        clip: true // an elided text of both directions may be wider than it should
        text: symbol.contact?.callsign ?? ""
        color: Style.instrumentLine
        font.pixelSize: 11
        elide: Text.ElideRight
        maximumLineCount: 1
    }

    function hundreds(feet: real): string {
        if (!Number.isFinite(feet) || Math.abs(feet) > 99949)
            return ""
        const shown = Math.round(Math.abs(feet) / 100)
        return (shown === 0 ? "" : feet < 0 ? "−" : "+") + String(shown).padStart(2, "0")
    }
}
