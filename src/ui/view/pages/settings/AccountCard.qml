import QtQuick
import QtQuick.Layouts
import com.tarvonet.backend
import "../.."

/// 账户: how the pilot signs in, and who he is on the network.
Card {
    id: card

    required property SettingsBackend settings

    ColumnLayout {
        anchors.fill: parent
        spacing: Style.spacingMedium

        SectionTitle {
            Layout.fillWidth: true
            title: qsTr("账户")
        }

        TextSetting {
            name: "username"
            label: "CID"
            value: card.settings ? card.settings.username : ""
            inputMethodHints: Qt.ImhNoPredictiveText | Qt.ImhNoAutoUppercase
            onEdited: text => { if (card.settings) card.settings.username = text }
        }

        FormField {
            label: qsTr("密码")

            PasswordField {
                objectName: "passwordField"
                Layout.fillWidth: true
                text: card.settings ? card.settings.password : ""
                onTextEdited: if (card.settings) card.settings.password = text
                Accessible.name: qsTr("密码")
            }
        }

        RowLayout {
            spacing: Style.spacingMedium

            TextSetting {
                Layout.preferredWidth: 3
                name: "realname"
                label: qsTr("真实姓名")
                value: card.settings ? card.settings.realname : ""
                onEdited: text => { if (card.settings) card.settings.realname = text }
            }

            TextSetting {
                Layout.preferredWidth: 2
                name: "homeAirport"
                label: qsTr("基地机场")
                value: card.settings ? card.settings.homeAirport : ""
                inputMethodHints: Qt.ImhPreferUppercase | Qt.ImhNoPredictiveText
                onEdited: text => { if (card.settings) card.settings.homeAirport = text }
            }
        }

        Flow {
            Layout.fillWidth: true
            spacing: Style.spacingMedium

            CustomCheckBox {
                objectName: "rememberBox"
                text: qsTr("记住密码")
                checked: card.settings ? card.settings.rememberPassword : false
                onToggled: if (card.settings) card.settings.rememberPassword = checked
            }

            CustomCheckBox {
                objectName: "autoLoginBox"
                text: qsTr("自动登录")
                checked: card.settings ? card.settings.autoLogin : false
                onToggled: if (card.settings) card.settings.autoLogin = checked
            }

            CustomCheckBox {
                objectName: "vatsimBox"
                text: qsTr("VATSIM 协议")
                checked: card.settings ? card.settings.vatsimProtocol : false
                onToggled: if (card.settings) card.settings.vatsimProtocol = checked
            }
        }
    }
}
