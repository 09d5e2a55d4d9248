import QtQuick
import QtQuick.Controls.Basic
import "../.."

/// A tool tip, made when the pointer comes to rest on what it belongs to.
Loader {
    id: loader

    property string text: ""
    property bool hovered: false
    /// At the right end instead of below, where it would hide the next of a column.
    property bool inside: false

    active: hovered && text.length > 0
    sourceComponent: ToolTip {
        parent: loader.parent // qmllint disable unqualified
        x: loader.inside ? (parent?.width ?? 0) - width - 6 : ((parent?.width ?? 0) - width) / 2 // qmllint disable unqualified
        y: loader.inside ? ((parent?.height ?? 0) - height) / 2 : (parent?.height ?? 0) + 6 // qmllint disable unqualified
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
