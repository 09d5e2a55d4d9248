import QtQuick
import "../.."

/// What is known of one symbol of the plot, over everything else there.
Rectangle {
    id: tip

    /// Null for none.
    property RadarContact symbol: null

    visible: symbol !== null
    implicitWidth: Math.ceil(text.implicitWidth) + 12
    implicitHeight: 20
    radius: 5
    color: Style.instrumentBezel
    border.width: 1
    border.color: symbol?.tint ?? Style.instrumentDim

    AppText {
        id: text

        anchors.fill: parent
        anchors.leftMargin: 6
        anchors.rightMargin: 6
        clip: true // an elided text of both directions may be wider than it should
        text: [tip.symbol?.callsign.slice(0, 40) ?? "", tip.symbol?.type.slice(0, 8) ?? "", tip.symbol?.heightText ?? ""]
            .filter(part => part !== "").join("  ")
        color: Style.instrumentLine
        font.pixelSize: 12
        elide: Text.ElideRight
        maximumLineCount: 1
    }
}
