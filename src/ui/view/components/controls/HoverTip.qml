import QtQuick
import QtQuick.Controls.Basic
import "../.."

/// A tool tip, made when the pointer comes to rest on what it belongs to.
Loader {
    id: loader

    property string text: ""
    property bool hovered: false

    active: hovered && text.length > 0
    sourceComponent: ToolTip {
        parent: loader.parent // qmllint disable unqualified
        y: (parent?.height ?? 0) + 6
        visible: true
        delay: 600
        leftPadding: Style.spacingMedium
        rightPadding: Style.spacingMedium
        topPadding: 7
        bottomPadding: 7
        text: loader.text // qmllint disable unqualified
        contentItem: AppText {
            text: loader.text // qmllint disable unqualified
            color: Style.instrumentLine
            font.pixelSize: Style.fontSmall
        }
        background: Rectangle {
            radius: Style.radiusSmall
            color: Style.instrumentBezel
        }
    }
}
