import QtQuick
import QtQuick.Layouts
import com.tarvonet.backend
import "../.."

/// What went wrong, on one line, until the pilot knows.
Rectangle {
    id: strip

    required property StatusBackend status
    readonly property string trouble: status ? status.bannerText : ""
    readonly property bool shown: trouble.length > 0

    Accessible.role: Accessible.AlertMessage
    Accessible.name: trouble
    implicitHeight: 22
    radius: Style.radiusSmall
    color: Qt.alpha(Style.statusError, 0.22)

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: Style.spacingMedium
        spacing: Style.spacingSmall

        AppText {
            objectName: "compactTrouble"
            Accessible.ignored: true
            Layout.fillWidth: true
            text: strip.trouble
            color: Style.noticeBorder
            font.pixelSize: Style.fontSmall
            elide: Text.ElideRight
            maximumLineCount: 1
        }

        GlassTool {
            objectName: "compactDismiss"
            implicitWidth: 22
            implicitHeight: 22
            text: qsTr("关闭提示")
            sign: "×"
            onClicked: strip.status.dismissBanner()
        }
    }
}
