import QtQuick
import "../.."

/// A dot in the colour of a tone: "quiet", "pending", "good" or "failed".
Rectangle {
    property string tone: "quiet"

    implicitWidth: 8
    implicitHeight: 8
    radius: width / 2
    color: Style.toneColor(tone)
}
