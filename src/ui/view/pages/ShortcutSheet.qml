import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import ".."

/// All shortcuts on one sheet. The keys that open it close it again.
Sheet {
    id: sheet

    /// Rows of one group in each: { group, rows }.
    readonly property var groups: Shortcuts.rows.reduce((groups, row) => {
        const last = groups[groups.length - 1]
        if (last?.group === row.group)
            last.rows.push(row)
        else
            groups.push({ group: row.group, rows: [row] })
        return groups
    }, [])

    objectName: "shortcutSheet"
    width: 560
    closePolicy: Popup.CloseOnEscape | Popup.CloseOnPressOutside
    onOpened: closeButton.forceActiveFocus(Qt.TabFocusReason)

    ColumnLayout {
        width: sheet.availableWidth
        spacing: Style.spacingLarge
        Keys.onPressed: event => {
            event.accepted = event.key === Qt.Key_F1 || event.key === Qt.Key_Question
            if (event.accepted && !event.isAutoRepeat)
                sheet.close()
        }

        SectionTitle {
            Layout.fillWidth: true
            title: qsTr("快捷键")
        }

        GridLayout {
            Layout.fillWidth: true
            columns: 2
            columnSpacing: 36
            rowSpacing: Style.spacingLarge

            Repeater {
                model: sheet.groups

                Group { Layout.rowSpan: index === 0 ? 2 : 1 }
            }
        }

        CustomButton {
            id: closeButton

            objectName: "shortcutSheetClose"
            Layout.alignment: Qt.AlignRight
            text: qsTr("关闭")
            onClicked: sheet.close()
        }
    }

    component Group: ColumnLayout {
        id: group

        required property var modelData
        required property int index

        Layout.fillWidth: true
        Layout.preferredWidth: 1
        Layout.alignment: Qt.AlignTop
        spacing: Style.spacingSmall

        AppText {
            text: group.modelData.group
            color: Style.textCaption
            font.pixelSize: Style.fontSmall
        }

        Repeater {
            model: group.modelData.rows

            RowLayout {
                id: line

                required property var modelData

                Layout.fillWidth: true
                spacing: Style.spacingTiny

                AppText {
                    Layout.fillWidth: true
                    text: line.modelData.text
                }

                Repeater {
                    model: line.modelData.keys

                    KeyCap {
                        required property string modelData

                        text: modelData
                    }
                }
            }
        }
    }
}
