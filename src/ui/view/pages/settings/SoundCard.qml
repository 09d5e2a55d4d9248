import QtQuick
import QtQuick.Layouts
import com.tarvonet.backend
import "../.."

/// 提示音: whether and how loud messages and connections are heard. Takes effect at once.
Card {
    id: card

    required property SoundsBackend sounds
    readonly property bool on: sounds ? sounds.on : false

    ColumnLayout {
        anchors.fill: parent
        spacing: Style.spacingMedium

        SectionTitle {
            Layout.fillWidth: true
            title: qsTr("提示音")
        }

        RowLayout {
            Layout.fillWidth: true
            spacing: Style.spacingMedium

            CustomCheckBox {
                objectName: "soundsOnBox"
                Layout.fillWidth: true
                text: qsTr("消息和连接时播放提示音")
                checked: card.on
                onToggled: if (card.sounds) card.sounds.on = checked
            }

            CustomButton {
                objectName: "soundTrialButton"
                implicitHeight: 32
                enabled: card.sounds ? card.sounds.audible : false
                text: qsTr("试听")
                font.pixelSize: Style.fontSmall
                onClicked: card.sounds.tryOut()
            }
        }

        SliderSetting {
            name: "soundVolume"
            label: qsTr("音量")
            enabled: card.on
            figure: !card.sounds ? "--" : value > 0 ? value + " %" : qsTr("0 %，只显示不播放")
            to: 100
            step: 5
            value: card.sounds ? card.sounds.volume : 0
            onMoved: value => { if (card.sounds) card.sounds.volume = value }
        }
    }
}
