import QtQuick
import "../.."

/// A pill with a coloured dot: what it is about, and how it is.
Rectangle {
    id: chip

    property string label: ""
    property string status: "--"
    property bool good: false
    /// "quiet", "pending", "good" or "failed".
    property string tone: good ? "good" : "quiet"

    implicitWidth: row.implicitWidth + 2 * Style.spacingMedium
    implicitHeight: 32
    radius: height / 2
    color: Style.accentSoft

    Row {
        id: row

        anchors.centerIn: parent
        spacing: Style.spacingSmall

        StatusDot {
            anchors.verticalCenter: parent.verticalCenter
            tone: chip.tone
        }

        AppText {
            visible: text.length > 0
            text: chip.label
            color: Style.textCaption
            font.pixelSize: Style.fontSmall
        }

        AppText {
            text: chip.status
            font.pixelSize: Style.fontSmall
            font.weight: Font.DemiBold
        }
    }
}
