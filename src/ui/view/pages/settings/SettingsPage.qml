import QtQuick
import QtQuick.Layouts
import com.tarvonet.backend
import "../.."

/// 设置: what 保存 writes on the left, and voice, which takes effect at once, on the right.
ColumnLayout {
    id: page

    required property SettingsBackend settings
    required property VoiceSettingsBackend voice
    required property SoundsBackend sounds

    spacing: Style.spacingMedium

    Header {
        Layout.fillWidth: true
        title: qsTr("设置")

        AppText {
            objectName: "saveStatus"
            anchors.verticalCenter: parent.verticalCenter
            text: page.settings ? page.settings.saveStatus : "--"
            color: Style.textCaption
            font.pixelSize: Style.fontSmall
        }

        AppText {
            objectName: "editedMark"
            anchors.verticalCenter: parent.verticalCenter
            visible: page.settings ? page.settings.edited : false
            text: qsTr("● 有未保存的修改")
            color: Style.textWarning
            font.pixelSize: Style.fontSmall
        }

        CustomButton {
            objectName: "reloadButton"
            text: qsTr("重载")
            onClicked: if (page.settings) page.settings.reload()
        }

        CustomButton {
            objectName: "saveButton"
            primary: true
            text: qsTr("保存")
            onClicked: {
                Qt.inputMethod.commit() // qmllint disable type
                if (page.settings)
                    page.settings.saveAll()
            }
        }
    }

    ScrollingColumn {
        objectName: "settingsScroll"
        Layout.fillWidth: true
        Layout.fillHeight: true

        GridLayout {
            Layout.fillWidth: true
            Layout.bottomMargin: Style.paddingPage
            columns: page.width > 640 ? 2 : 1
            columnSpacing: Style.spacingGrid
            rowSpacing: Style.spacingGrid

            ColumnLayout {
                Layout.alignment: Qt.AlignTop
                Layout.preferredWidth: 1
                spacing: Style.spacingGrid

                AccountCard {
                    Layout.fillWidth: true
                    settings: page.settings
                }

                XPlaneCard {
                    Layout.fillWidth: true
                    settings: page.settings
                }

                MsfsCard {
                    Layout.fillWidth: true
                    settings: page.settings
                    release: "2020"
                }

                MsfsCard {
                    Layout.fillWidth: true
                    settings: page.settings
                    release: "2024"
                }
            }

            ColumnLayout {
                Layout.alignment: Qt.AlignTop
                Layout.preferredWidth: 1
                spacing: Style.spacingGrid

                VoiceCard {
                    Layout.fillWidth: true
                    voice: page.voice
                }

                SoundCard {
                    Layout.fillWidth: true
                    sounds: page.sounds
                }

                BuildCard {
                    Layout.fillWidth: true
                    settings: page.settings
                }
            }
        }
    }
}
