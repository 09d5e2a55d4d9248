import QtQuick
import QtQuick.Layouts
import com.tarvonet.backend
import "../.."

/// X-Plane: where it runs, and where its models of other aircraft are.
Card {
    id: card

    required property SettingsBackend settings
    readonly property var hints: settings ? settings.hints : ({})

    ColumnLayout {
        anchors.fill: parent
        spacing: Style.spacingMedium

        SectionTitle {
            Layout.fillWidth: true
            title: "X-Plane"
        }

        RowLayout {
            spacing: Style.spacingMedium

            TextSetting {
                Layout.alignment: Qt.AlignTop
                Layout.preferredWidth: 3
                name: "xplaneNetworkAddress"
                label: qsTr("地址")
                value: card.settings ? card.settings.xplaneNetworkAddress : ""
                inputMethodHints: Qt.ImhNoPredictiveText | Qt.ImhNoAutoUppercase | Qt.ImhPreferLatin
                onEdited: text => { if (card.settings) card.settings.xplaneNetworkAddress = text }
            }

            TextSetting {
                Layout.alignment: Qt.AlignTop
                Layout.preferredWidth: 2
                name: "xplaneUdpPort"
                label: qsTr("UDP 端口")
                value: card.settings ? card.settings.xplaneUdpPortText : ""
                hint: card.hints.xplaneUdpPort ?? ""
                inputMethodHints: Qt.ImhDigitsOnly
                onEdited: text => { if (card.settings) card.settings.xplaneUdpPortText = text }
            }
        }

        PathListSetting {
            name: "xplaneCslPathsText"
            label: qsTr("CSL 路径（每行一个）")
            value: card.settings ? card.settings.xplaneCslPathsText : ""
            hint: card.hints.xplaneCslPathsText ?? ""
            onEdited: text => { if (card.settings) card.settings.xplaneCslPathsText = text }
        }
    }
}
