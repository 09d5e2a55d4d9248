import QtQuick
import QtQuick.Layouts
import com.tarvonet.backend
import "../.."

/// The flight as it is now; "--" without a simulator.
Card {
    id: strip

    required property DashboardBackend dashboard
    readonly property bool live: dashboard ? dashboard.simulatorConnected : false

    contentPadding: 20

    ColumnLayout {
        anchors.fill: parent
        spacing: Style.spacingMedium

        RowLayout {
            Layout.fillWidth: true
            spacing: 0

            Reading {
                name: qsTr("航向")
                value: strip.number(strip.dashboard ? strip.dashboard.heading : NaN, Format.course)
                unit: "°"
            }

            Separator {}

            Reading {
                name: qsTr("地速")
                value: strip.number(strip.dashboard ? strip.dashboard.groundSpeed : NaN, v => Format.fixed(v, 0))
                unit: "kt"
            }

            Separator {}

            Reading {
                name: qsTr("高度")
                value: strip.number(strip.dashboard ? strip.dashboard.altitude : NaN, Format.grouped)
                unit: "ft"
            }

            Separator {}

            Reading {
                Layout.preferredWidth: 220
                name: qsTr("位置")
                value: strip.number(strip.dashboard ? strip.dashboard.latitude : NaN, latitude => strip.number(strip.dashboard ? strip.dashboard.longitude : NaN,
                    longitude => Format.latitude(latitude) + "  " + Format.longitude(longitude)))
                valueSize: 18
            }
        }

        RowLayout {
            Layout.fillWidth: true
            visible: hint.text.length > 0
            spacing: Style.spacingMedium

            StatusDot { tone: strip.dashboard ? strip.dashboard.simulatorTone : "quiet" }

            ReasonText {
                id: hint

                objectName: "simulatorHint"
                Layout.fillWidth: true
                text: strip.dashboard ? strip.dashboard.simulatorHintText : ""
                color: strip.dashboard && strip.dashboard.simulatorTone === "failed" ? Style.textError : Style.textCaption
            }

            CustomButton {
                objectName: "overviewReconnect"
                implicitHeight: 32
                leftPadding: Style.spacingMedium
                rightPadding: Style.spacingMedium
                text: qsTr("重新连接")
                font.pixelSize: Style.fontSmall
                onClicked: strip.dashboard.requestSimulatorReconnect()
            }
        }
    }

    function number(value: var, format: var): string {
        return live && Number.isFinite(value) ? format(value) : "--"
    }

    component Separator: Rectangle {
        Layout.rightMargin: Style.spacingLarge
        implicitWidth: 1
        implicitHeight: 36
        color: Style.divider
    }

    component Reading: ColumnLayout {
        id: reading

        property string name
        property string value
        property string unit: ""
        property int valueSize: Style.fontHeading

        Layout.fillWidth: true
        Layout.preferredWidth: 110
        spacing: 2

        AppText {
            text: reading.name
            color: Style.textCaption
            font.pixelSize: Style.fontSmall
        }

        RowLayout {
            spacing: Style.spacingTiny

            AppText {
                Layout.preferredHeight: 34
                text: reading.value
                color: strip.live ? Style.textActive : Style.textMuted // qmllint disable unqualified
                font.pixelSize: reading.valueSize
                font.weight: Font.DemiBold
            }

            AppText {
                visible: strip.live // qmllint disable unqualified
                Layout.alignment: Qt.AlignBottom
                bottomPadding: 6
                text: reading.unit
                color: Style.textCaption
                font.pixelSize: Style.fontSmall
            }
        }
    }
}
