import QtQuick
import QtQuick.Layouts
import com.tarvonet.backend
import "../.."

/// A card of the first start's tour, with an arrow to what it tells of. It lies over the page and keeps nobody from
/// working: Escape or 跳过 ends the tour.
Rectangle {
    id: card

    required property TourBackend tour
    required property int step
    property string title: ""
    property string text: ""
    /// The arrow is at the card's right side.
    property bool pointsRight: false
    /// What it stands beside, in an item that fills the window but for a margin.
    property Item target: null
    property real margin: 0
    readonly property int steps: tour ? tour.steps : 0
    readonly property bool last: step === steps

    objectName: "tourCard" + step
    Accessible.role: Accessible.AlertMessage
    Accessible.name: title + "：" + text
    visible: tour ? tour.step === step : false
    y: target ? target.y + target.height / 2 + margin - height / 2 : 0
    z: 10
    width: 256
    height: column.implicitHeight + 2 * Style.spacingLarge
    radius: Style.radiusLarge / 2
    color: Style.primary
    border.width: 1
    border.color: Style.glassBorder

    Shortcut {
        enabled: card.visible
        sequences: ["Esc"]
        onActivated: card.tour.end()
        onActivatedAmbiguously: card.tour.end() // a search under it is left by the next Escape
    }

    Rectangle {
        x: card.pointsRight ? card.width - width / 2 - 1 : 1 - width / 2
        anchors.verticalCenter: parent.verticalCenter
        width: 16
        height: 16
        rotation: 45
        antialiasing: true
        color: Style.primary
    }

    MouseArea { anchors.fill: parent } // what lies below is not clicked through the card

    ColumnLayout {
        id: column

        x: Style.spacingLarge
        y: Style.spacingLarge
        width: parent.width - 2 * Style.spacingLarge
        spacing: Style.spacingSmall

        AppText {
            Layout.fillWidth: true
            text: card.title
            color: Style.onImage
            font.pixelSize: Style.fontTitle
            font.weight: Font.DemiBold
        }

        AppText {
            Layout.fillWidth: true
            text: card.text
            color: Style.onImageSoft
            font.pixelSize: 13
            lineHeight: 1.35
            wrapMode: Text.Wrap
        }

        RowLayout {
            Layout.fillWidth: true
            Layout.topMargin: Style.spacingSmall
            spacing: 6

            Repeater {
                model: card.steps

                Rectangle {
                    required property int index

                    implicitWidth: index === card.step - 1 ? 16 : 6 // qmllint disable unqualified
                    implicitHeight: 6
                    radius: 3
                    color: index === card.step - 1 ? Style.onImage : Style.glassBorder // qmllint disable unqualified
                }
            }

            Item { Layout.fillWidth: true }

            CardButton {
                objectName: "tourSkip"
                visible: !card.last
                text: qsTr("跳过")
                onClicked: card.tour.end()
            }

            CardButton {
                objectName: "tourNext"
                filled: true
                text: card.last ? qsTr("开始使用") : qsTr("知道了")
                onClicked: card.tour.next()
            }
        }
    }

    component CardButton: Pressable {
        id: button

        property bool filled: false

        implicitHeight: 30
        leftPadding: Style.spacingMedium
        rightPadding: Style.spacingMedium
        background: Rectangle {
            radius: height / 2
            color: button.filled ? Style.onImage : button.hovered ? Style.glass : "transparent"
            border.width: button.ringWidth
            border.color: button.ringColor
        }
        contentItem: AppText {
            text: button.text
            color: button.filled ? Style.primary : Style.onImageSoft
            font.pixelSize: Style.fontSmall
            font.weight: Font.DemiBold
        }
    }
}
