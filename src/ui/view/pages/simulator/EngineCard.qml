import QtQuick
import QtQuick.Layouts
import com.tarvonet.backend
import "../.."

/// 发动机: which engines run, and which reverse.
Card {
    id: card

    required property SimulatorBackend simulator

    ColumnLayout {
        anchors.fill: parent
        spacing: Style.spacingMedium

        SectionTitle {
            Layout.fillWidth: true
            title: qsTr("发动机")
        }

        EngineBay {
            Layout.fillWidth: true
            simulator: card.simulator
        }

        Item { Layout.fillHeight: true }
    }
}
