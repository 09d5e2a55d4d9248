import QtQuick
import QtQuick.Layouts
import com.tarvonet.backend
import "../.."

/// 构建信息: what this build is, and whom it talks to.
Card {
    id: card

    required property SettingsBackend settings

    ColumnLayout {
        anchors.fill: parent
        spacing: Style.spacingMedium

        SectionTitle {
            Layout.fillWidth: true
            title: qsTr("构建信息")
        }

        Figure {
            label: qsTr("版本")
            value: card.settings ? card.settings.appVersion || "--" : "--"
        }

        Figure {
            label: qsTr("数据文件夹")
            value: card.settings ? card.settings.dataFolder : "--"
        }

        Figure {
            label: qsTr("账户服务")
            value: card.settings ? card.settings.apiBaseUrl : "--"
        }

        Figure {
            label: qsTr("网络服务器")
            value: card.settings ? card.settings.networkAddress : "--"
        }

        Figure {
            label: qsTr("语音服务器")
            value: card.settings ? card.settings.voiceAddress : "--"
        }

        Figure {
            label: qsTr("遇到问题")
            value: qsTr("运行同一文件夹中的 tarvo-support")
        }
    }
}
