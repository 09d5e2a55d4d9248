import QtQuick
import QtQuick.Layouts
import com.tarvonet.backend
import ".."

/// The first page after the login: which simulator the pilot flies.
Item {
    id: page

    required property DashboardBackend dashboard
    property TourBackend tour: null

    signal logoutRequested()

    Row {
        anchors.fill: parent

        Repeater {
            model: ["qrc:/resources/2020.jpg", "qrc:/resources/xplane.png"]

            Item {
                id: half

                required property string modelData

                width: page.width / 2 // qmllint disable unqualified
                height: page.height // qmllint disable unqualified
                clip: true

                Image {
                    anchors.fill: parent
                    source: half.modelData
                    fillMode: Image.PreserveAspectCrop
                    smooth: true
                    mipmap: true
                }

                Rectangle {
                    anchors.fill: parent
                    color: Style.imageFilm
                }
            }
        }
    }

    // Keeps the line at the foot legible on any picture; behind the cards, which it isn't to dim.
    Rectangle {
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        height: 220
        gradient: Gradient {
            GradientStop { position: 0; color: "transparent" }
            GradientStop { position: 0.65; color: Style.imageFoot }
            GradientStop { position: 1; color: Style.imageFoot }
        }
    }

    ColumnLayout {
        anchors.centerIn: parent
        anchors.verticalCenterOffset: -40
        width: Math.min(parent.width - 2 * Style.paddingPage, 720)
        spacing: Style.spacingLarge

        Image {
            Layout.alignment: Qt.AlignHCenter
            Layout.preferredWidth: 72
            Layout.preferredHeight: 72
            source: "qrc:/resources/logo.png"
            sourceSize.width: 144
            smooth: true
        }

        AppText {
            Layout.fillWidth: true
            Layout.bottomMargin: Style.spacingLarge
            horizontalAlignment: Text.AlignHCenter
            text: qsTr("请选择飞行模拟平台")
            color: Style.onImage
            font.pixelSize: Style.fontDisplay
            font.weight: Font.Bold
        }

        ModeCard {
            objectName: "msfsCard"
            Layout.alignment: Qt.AlignHCenter
            text: "MSFS"
            description: qsTr("微软模拟飞行")
            versions: qsTr("支持 2020 / 2024")
            onClicked: if (page.dashboard) page.dashboard.requestModeChange("MSFS")
        }

        ModeCard {
            objectName: "xplaneCard"
            Layout.alignment: Qt.AlignHCenter
            Component.onCompleted: forceActiveFocus()
            text: "X-Plane"
            description: qsTr("X-Plane 飞行模拟")
            versions: qsTr("支持 10 / 11 / 12")
            onClicked: if (page.dashboard) page.dashboard.requestModeChange("XPLANE")
        }
    }

    TourCard {
        x: Math.max(Style.spacingMedium, (parent.width - 400) / 2 - width - Style.spacingLarge)
        anchors.verticalCenter: parent.verticalCenter
        anchors.verticalCenterOffset: 52 // between the two cards
        tour: page.tour
        step: 1
        title: qsTr("选择模拟器")
        text: qsTr("选你要用的平台。模拟器可以稍后再启动，客户端会自己找到它。")
        pointsRight: true
    }

    ColumnLayout {
        anchors.horizontalCenter: parent.horizontalCenter
        anchors.bottom: parent.bottom
        anchors.bottomMargin: Style.paddingPage
        spacing: Style.spacingMedium

        Pressable {
            id: logoutButton

            objectName: "logoutButton"
            Layout.alignment: Qt.AlignHCenter
            implicitWidth: 160
            implicitHeight: Style.controlHeight
            text: qsTr("退出登录")
            onClicked: page.logoutRequested()

            background: Rectangle {
                radius: height / 2
                color: logoutButton.hovered ? Style.glassHover : Style.glass
                border.width: logoutButton.visualFocus ? 2 : 1
                border.color: logoutButton.visualFocus ? Style.onImage : Style.glassBorder
            }
            contentItem: AppText {
                text: logoutButton.text
                color: Style.onImage
                horizontalAlignment: Text.AlignHCenter
            }
        }

        CidText {
            Layout.alignment: Qt.AlignHCenter
            cid: page.dashboard ? page.dashboard.cid : "--"
            color: Style.onImageSoft
            font.pixelSize: 13
        }
    }
}
