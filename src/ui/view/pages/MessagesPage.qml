import QtQuick
import QtQuick.Layouts
import ".."
import "../components"

/// 消息: the channels on the left, the active one's messages on the right.
ColumnLayout {
    id: page

    required property var messages

    spacing: Style.spacingMedium

    Header {
        Layout.fillWidth: true
        title: qsTr("消息")
    }

    AppText {
        Layout.fillWidth: true
        text: page.messages?.summaryText ?? "--"
        color: Style.textSecondary
    }

    AppText {
        Layout.fillWidth: true
        text: page.messages?.composePlaceholder ?? "--"
        color: Style.textMuted
    }

    Item { Layout.fillHeight: true }
}
