import QtQuick
import com.tarvonet.backend
import "../.."

/// The aircraft around the own one, which is in the middle and heads up. Until a range is picked the outer ring grows and
/// shrinks so that nine of ten contacts are inside it; the others stand faint at its edge.
Rectangle {
    id: radar

    required property SimulatorBackend simulator
    readonly property bool headingKnown: simulator ? simulator.simulatorConnected && Number.isFinite(simulator.heading) : false
    /// What is on top, in degrees.
    readonly property real up: headingKnown ? (simulator.heading % 360 + 360) % 360 : 0
    /// Nautical miles at the outer ring.
    readonly property int range: simulator ? simulator.plotRange : 20
    /// The nearest ones carry a height and a stroke; the others are small.
    readonly property int measuredContacts: 24
    /// Where the pointer is, or has last tapped; null for nowhere.
    property var asked: null

    /// The symbols have moved: once they all stand where they do now, the labels follow.
    function moved(): void {
        Qt.callLater(placeLabels) // qmllint disable
    }

    /// Gives every label the room that there is.
    function placeLabels(): void {
        const callsigns = []
        const figures = []
        for (let i = 0; i < plotted.count; i++) {
            const symbol = plotted.itemAt(i)
            callsigns.push(symbol.callsign)
            figures.push(symbol.x, symbol.y, symbol.turn, symbol.nameWidth, symbol.altitudeWidth, symbol.below ? 1 : 0)
        }
        const places = simulator ? simulator.plotLabels.place(callsigns, figures, Style.radarLabelHeight, glass(), occupied()) : []
        for (let i = 0; i < plotted.count; i++)
            plotted.itemAt(i).label(places[3 * i] ?? NaN, places[3 * i + 1] ?? NaN, places[3 * i + 2] === 1)
        findPointed()
    }

    /// Where labels may be, seen from the middle.
    function glass(): rect {
        return Qt.rect(8 - centre.x, 8 - centre.y, width - 16, height - 16)
    }

    /// What no label may hide: the own aeroplane, the range, the rose's numbers.
    function occupied(): var {
        const areas = []
        for (const item of [scale, miles.itemAt(0), miles.itemAt(1)])
            areas.push(Qt.rect(item.x - centre.x, item.y - centre.y, item.width, item.height))
        areas.push(Qt.rect(-11, -3, 22, 4), Qt.rect(-5, -11, 10, 23))
        for (let i = 0; i < 12; i++) {
            const angle = (30 * i - up) * Math.PI / 180
            areas.push(Qt.rect((centre.outer - 16) * Math.sin(angle) - 6, (16 - centre.outer) * Math.cos(angle) - 6, 12, 12))
        }
        return areas
    }

    function findPointed(): void {
        let nearest = 12
        let found = null
        for (let i = 0; asked && i < plotted.count; i++) {
            const symbol = plotted.itemAt(i)
            const away = Math.hypot(symbol.x + centre.x - asked.x, symbol.y + centre.y - asked.y)
            if (symbol.visible && away < nearest) {
                nearest = away
                found = symbol
            }
        }
        tip.symbol = found
    }

    implicitWidth: 320
    implicitHeight: 320
    radius: 18
    color: Style.instrumentBezel
    Accessible.role: Accessible.Graphic
    Accessible.name: qsTr("交通雷达：%1").arg(simulator ? simulator.plotSummary : qsTr("附近暂无交通目标"))
    onUpChanged: moved()
    onRangeChanged: moved()
    onWidthChanged: moved()
    onHeightChanged: moved()
    onAskedChanged: findPointed()
    Component.onCompleted: moved()

    Connections {
        target: radar.simulator

        function onPickedCallsignChanged(): void {
            radar.moved()
        }

        function onTrafficChanged(): void {
            radar.moved()
        }
    }

    HoverHandler {
        acceptedDevices: PointerDevice.Mouse | PointerDevice.TouchPad // a finger hovers for the time of its tap alone
        onPointChanged: if (hovered) radar.asked = point.position
        onHoveredChanged: radar.asked = hovered ? point.position : null
    }

    TapHandler {
        onTapped: eventPoint => {
            radar.asked = eventPoint.position
            if (radar.simulator)
                radar.simulator.pickCallsign(tip.symbol ? tip.symbol.callsign : "")
        }
    }

    RangeWheel { onStepped: steps => radar.simulator?.stepPlotRange(steps) }

    Rectangle {
        anchors.fill: parent
        anchors.margins: 5
        radius: 13
        color: Style.instrumentGlass
    }

    Item {
        id: centre

        readonly property real outer: Math.min(radar.width, radar.height) / 2 - 22

        x: radar.width / 2
        y: radar.height / 2 + 8

        Repeater {
            model: 3

            Rectangle {
                id: ring

                required property int index
                readonly property real size: centre.outer * (index + 1) / 4 // qmllint disable unqualified

                x: -size
                y: -size
                width: 2 * size
                height: 2 * size
                radius: size
                color: "transparent"
                border.width: 1
                border.color: index === 1 ? Style.instrumentDim : Style.instrumentGrid
                opacity: index === 1 ? 0.7 : 1
            }
        }

        CompassRose {
            radius: centre.outer
            heading: radar.up
        }

        // Over rings and rose, the nearest on top.
        Item {
            Repeater {
                id: plotted

                model: radar.simulator ? radar.simulator.contactRows : null

                RadarContact {
                    objectName: "radarContact"
                    required property int index

                    upHeading: radar.up // qmllint disable unqualified
                    range: radar.range // qmllint disable unqualified
                    radius: centre.outer // qmllint disable unqualified
                    measured: picked || index < radar.measuredContacts // qmllint disable unqualified
                    picked: callsign !== "" && callsign === radar.simulator.pickedCallsign // qmllint disable unqualified
                    z: picked ? 1 : -index
                }
            }
        }

        // The own aeroplane: fuselage, wings, tail.
        Item {
            opacity: radar.simulator && radar.simulator.simulatorConnected ? 1 : 0.4

            Rectangle { x: -2; y: -11; width: 4; height: 23; radius: 2; color: Style.instrumentLine }
            Rectangle { x: -11; y: -3; width: 22; height: 3.5; radius: 1.5; color: Style.instrumentLine }
            Rectangle { x: -5; y: 8; width: 10; height: 3; radius: 1.5; color: Style.instrumentLine }
        }
    }

    // The lubber line. What it reads stands on the instrument beside the plot.
    Rectangle {
        x: centre.x - 1
        y: centre.y - centre.outer - 5
        width: 2
        height: 14
        color: Style.instrumentOwn
    }

    Repeater {
        id: miles

        model: [0.5, 1]

        AppText {
            required property real modelData

            x: centre.x + centre.outer * modelData * 0.7071 - (modelData === 1 ? -4 : width + 1) // qmllint disable unqualified
            y: centre.y + centre.outer * modelData * 0.7071 - (modelData === 1 ? 2 : height + 1) // qmllint disable unqualified
            text: String(radar.range * modelData) // qmllint disable unqualified
            color: Style.instrumentDim
            font.pixelSize: 11
        }
    }

    RadarScale {
        id: scale

        x: 12
        y: parent.height - height - 10
        range: radar.range
        simulator: radar.simulator
        onWidthChanged: radar.moved()
    }

    RadarTip {
        id: tip

        objectName: "radarTip"
        x: Math.max(8, Math.min(radar.width - width - 8, centre.x + (symbol?.x ?? 0) + 10))
        y: Math.max(8, Math.min(radar.height - height - 8, centre.y + (symbol?.y ?? 0) - height - 8))
        width: Math.min(implicitWidth, radar.width - 16)
    }
}
