import QtQuick
import QtQuick.Layouts
import "../.."

/// One radio: its display, and the field that tunes it.
ColumnLayout {
    id: unit

    property string title: "COM1"
    property string frequency: "--"
    property bool transmit: false
    property bool receive: false
    property string volume: "--"
    property string example: "121.800"
    /// Whether there is a simulator that can be told.
    property bool live: false

    signal tuned(string frequency)

    spacing: Style.spacingMedium

    Rectangle {
        Layout.fillWidth: true
        implicitHeight: 112
        radius: Style.radiusButton
        color: Style.instrumentBezel

        ColumnLayout {
            anchors.fill: parent
            anchors.margins: Style.spacingMedium
            spacing: 0

            RowLayout {
                AppText {
                    Layout.fillWidth: true
                    text: unit.title
                    color: Style.instrumentDim
                    font.pixelSize: Style.fontSmall
                    font.weight: Font.DemiBold
                }

                AppText {
                    text: qsTr("音量 %1").arg(unit.volume)
                    color: Style.instrumentDim
                    font.pixelSize: 11
                }
            }

            AppText {
                Layout.fillWidth: true
                Layout.fillHeight: true
                text: unit.frequency
                color: Style.instrumentActive
                font.pixelSize: 30
                font.weight: Font.DemiBold
                font.letterSpacing: 1
                fontSizeMode: Text.HorizontalFit
                minimumPixelSize: 12
            }

            RowLayout {
                spacing: Style.spacingSmall

                Lamp {
                    dark: true
                    text: qsTr("发射")
                    lit: unit.transmit
                    litColor: Style.statusError
                }

                Lamp {
                    dark: true
                    text: qsTr("接收")
                    lit: unit.receive
                    litColor: Style.instrumentActive
                }
            }
        }
    }

    CheckedEntry {
        id: entry

        Layout.fillWidth: true
        enabled: unit.live
        name: unit.title.toLowerCase()
        placeholder: qsTr("设置 %1，例如 %2").arg(unit.title).arg(unit.example)
        buttonText: qsTr("写入 %1").arg(unit.title)
        verdict: unit.check(entry.typed)
        onSubmitted: value => unit.tuned(value)
    }

    /// An airband frequency in MHz; fewer than three decimals are filled up.
    function check(text: string): var {
        if (!/^\d{3}\.\d{1,3}$/.test(text))
            return { hint: qsTr("格式如 %1").arg(example), unfinished: begins(text) }
        const kilohertz = Math.round(Number(text) * 1000)
        if (kilohertz < 118000 || kilohertz > 136990)
            return { hint: qsTr("范围 118.000 至 136.990") }
        if (kilohertz % 5 !== 0)
            return { hint: qsTr("末位只能是 0 或 5") }
        return { value: (kilohertz / 1000).toFixed(3) }
    }

    /// True for what may yet become a frequency: "1", "13", "121."
    function begins(text: string): bool {
        for (let megahertz = 118; megahertz <= 136; ++megahertz)
            if ((megahertz + ".").startsWith(text))
                return true
        return false
    }
}
