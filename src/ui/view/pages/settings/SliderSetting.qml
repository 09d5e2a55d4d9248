import QtQuick
import QtQuick.Layouts
import "../.."

/// A figure that is set by eye, which stands at the right end of its caption.
ColumnLayout {
    id: setting

    property string name: ""
    property string label: ""
    property string figure: "--"
    property alias from: slider.from
    property alias to: slider.to
    property alias step: slider.stepSize
    property real value: 0

    signal moved(real value)

    spacing: Style.spacingTiny

    Figure {
        label: setting.label
        value: setting.figure
    }

    CustomSlider {
        id: slider

        objectName: setting.name + "Slider"
        Layout.fillWidth: true
        snapMode: CustomSlider.SnapAlways
        value: setting.value
        onMoved: setting.moved(value)
        Accessible.name: setting.label
    }
}
