import QtQuick
import "../.."

/// A pill with a coloured dot: what it is about, and how it is.
Rectangle {
    id: chip

    property string label: ""
    property string status: "--"
    property bool good: false
    /// Under way: neither good nor quiet.
    property bool pending: status.endsWith("...")

    implicitWidth: row.implicitWidth + 2 * Style.spacingMedium
    implicitHeight: 32
    radius: height / 2
    color: Style.accentSoft

    Row {
        id: row

        anchors.centerIn: parent
        spacing: Style.spacingSmall

        Rectangle {
            anchors.verticalCenter: parent.verticalCenter
            width: 8
            height: 8
            radius: 4
            color: chip.pending ? Style.statusPending : chip.good ? Style.statusSuccess : Style.textMuted
        }

        AppText {
            visible: text.length > 0
            text: chip.label
            color: Style.textSecondary
            font.pixelSize: Style.fontSmall
        }

        AppText {
            text: chip.status
            font.pixelSize: Style.fontSmall
            font.weight: Font.DemiBold
        }
    }
}
