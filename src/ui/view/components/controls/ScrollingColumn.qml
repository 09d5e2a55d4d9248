import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import "../.."

/// Cards one below the other, which scroll when they are higher than the page, and follow the keyboard's focus.
Item {
    id: page

    default property alias cards: column.data
    property alias contentItem: scroll.contentItem
    property alias rightPadding: scroll.rightPadding

    // Room for the cards' shadows, which the view would cut off; and it scrolls to the window's edge.
    Layout.leftMargin: -8
    Layout.bottomMargin: -16

    focus: true
    Keys.forwardTo: [keys]

    ScrollKeys {
        id: keys

        view: scroll.contentItem as Flickable
    }

    FocusFollower { scroll: scroll }

    ScrollView {
        id: scroll

        anchors.fill: parent
        padding: 8
        bottomPadding: 0
        rightPadding: Style.spacingMedium
        contentWidth: availableWidth
        ScrollBar.horizontal.policy: ScrollBar.AlwaysOff
        ScrollBar.vertical: CustomScrollBar {
            parent: scroll
            x: scroll.width - width
            height: scroll.height
        }

        ColumnLayout {
            id: column

            width: scroll.availableWidth
            spacing: Style.spacingGrid
        }
    }
}
