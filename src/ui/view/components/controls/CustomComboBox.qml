import QtQuick
import QtQuick.Controls.Basic
import "../.."

ComboBox {
    id: combo

    implicitHeight: Style.controlHeight
    leftPadding: Style.spacingMedium
    font.family: Style.fontFamily
    font.pixelSize: Style.fontBody

    contentItem: AppText {
        text: combo.displayText
        font: combo.font
        opacity: combo.enabled ? 1 : 0.5
        elide: Text.ElideRight
    }
    indicator: AppText {
        x: combo.width - width - Style.spacingMedium
        y: (combo.height - height) / 2
        text: "⌄"
        color: Style.textCaption
    }
    background: Rectangle {
        radius: Style.radiusButton
        color: combo.enabled ? Style.controlBg : Style.controlBgDisabled
        border.width: combo.visualFocus || combo.down ? 2 : 1
        border.color: combo.visualFocus || combo.down ? Style.controlBorderActive : Style.controlBorder
    }
    delegate: ItemDelegate {
        id: row

        required property var modelData
        required property int index

        width: ListView.view.width
        highlighted: combo.highlightedIndex === index // qmllint disable unqualified
        contentItem: AppText {
            text: String(combo.textRole ? row.modelData[combo.textRole] : row.modelData) // qmllint disable unqualified
            elide: Text.ElideRight
        }
        background: Rectangle {
            radius: Style.radiusSmall
            color: row.highlighted ? Style.accentSoft : "transparent"
        }
    }
    popup: Popup {
        y: combo.height + Style.spacingTiny
        width: combo.width
        padding: Style.spacingTiny
        height: Math.min(contentItem.implicitHeight + 2 * padding, 280)

        contentItem: ListView {
            clip: true
            implicitHeight: contentHeight
            model: combo.popup.visible ? combo.delegateModel : null // qmllint disable type
            currentIndex: combo.highlightedIndex
            ScrollBar.vertical: CustomScrollBar {}
        }
        background: Rectangle {
            radius: Style.radiusButton
            color: Style.controlBg
            border.width: 1
            border.color: Style.controlBorder
        }
    }
}
