import QtQuick
import QtQuick.Layouts
import com.tarvonet.backend
import "../.."

/// What went wrong, over any page, and what can be done about it.
Rectangle {
    id: banner

    required property StatusBackend status
    readonly property bool shown: status ? status.bannerText.length > 0 : false

    Accessible.role: Accessible.AlertMessage
    Accessible.name: status ? status.bannerText : ""
    visible: shown
    implicitHeight: row.implicitHeight + 2 * Style.spacingSmall
    radius: Style.radiusButton
    color: Style.noticeBg
    border.width: 1
    border.color: Style.noticeBorder

    RowLayout {
        id: row

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.leftMargin: Style.spacingLarge
        anchors.rightMargin: Style.spacingSmall
        anchors.verticalCenter: parent.verticalCenter
        spacing: Style.spacingMedium

        StatusDot { tone: "failed" }

        ReasonText {
            objectName: "bannerText"
            Layout.fillWidth: true
            Layout.maximumHeight: 120 // the button stays in the window
            clip: true
            text: banner.status ? banner.status.bannerText : ""
            font.weight: Font.DemiBold
        }

        SteadyButton {
            objectName: "bannerAction"
            meaning: banner.status ? banner.status.bannerText : ""
            implicitHeight: 32
            leftPadding: Style.spacingMedium
            rightPadding: Style.spacingMedium
            primary: true
            text: banner.status ? banner.status.bannerActionText : ""
            font.pixelSize: Style.fontSmall
            onMeant: banner.status.act()
        }

        Pressable {
            id: cross

            objectName: "bannerClose"
            implicitWidth: 32
            implicitHeight: 32
            Accessible.name: qsTr("关闭提示")
            onClicked: banner.status.dismissBanner()

            background: Rectangle {
                radius: 16
                color: cross.hovered ? Style.noticeBorder : "transparent"
                border.width: cross.ringWidth
                border.color: cross.ringColor
            }
            contentItem: AppText {
                text: "×"
                color: Style.textError
                font.pixelSize: 18
                horizontalAlignment: Text.AlignHCenter
            }
        }
    }
}
