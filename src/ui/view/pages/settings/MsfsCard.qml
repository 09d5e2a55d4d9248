import QtQuick
import QtQuick.Layouts
import com.tarvonet.backend
import "../.."

/// Where one release of MSFS has its packages.
Card {
    id: card

    required property SettingsBackend settings
    /// "2020" or "2024".
    required property string release
    readonly property string packages: "msfsPackagesPath" + release
    readonly property string community: "msfsCommunityPath" + release
    readonly property string mappings: "msfsCustomMappingPaths" + release
    readonly property var hints: settings ? settings.hints : ({})

    ColumnLayout {
        anchors.fill: parent
        spacing: Style.spacingMedium

        RowLayout {
            SectionTitle {
                Layout.fillWidth: true
                title: "MSFS " + card.release
                note: qsTr("下次启动生效")
            }

            CustomButton {
                objectName: "reloadLibrary" + card.release
                implicitHeight: 32
                leftPadding: Style.spacingMedium
                rightPadding: Style.spacingMedium
                text: qsTr("重载机模")
                font.pixelSize: Style.fontSmall
                onClicked: if (card.settings) card.settings.triggerMsfsLibraryReload()
            }
        }

        TextSetting {
            name: card.packages
            label: "Packages"
            value: card.settings ? card.settings[card.packages] : ""
            hint: card.hints[card.packages] ?? ""
            inputMethodHints: Qt.ImhNoPredictiveText | Qt.ImhNoAutoUppercase
            onEdited: text => { if (card.settings) card.settings[card.packages] = text }
        }

        TextSetting {
            name: card.community
            label: "Community"
            value: card.settings ? card.settings[card.community] : ""
            hint: card.hints[card.community] ?? ""
            inputMethodHints: Qt.ImhNoPredictiveText | Qt.ImhNoAutoUppercase
            onEdited: text => { if (card.settings) card.settings[card.community] = text }
        }

        PathListSetting {
            name: card.mappings
            label: qsTr("自定义机模根目录（每行一个）")
            value: card.settings ? card.settings[card.mappings] : ""
            hint: card.hints[card.mappings] ?? ""
            onEdited: text => { if (card.settings) card.settings[card.mappings] = text }
        }
    }
}
