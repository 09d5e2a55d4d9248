pragma Singleton
import QtQuick

/// What QML has of the clipboard.
QtObject {
    readonly property TextEdit sheet: TextEdit { textFormat: TextEdit.PlainText }

    function keep(text: string): void {
        sheet.text = text
        sheet.selectAll()
        sheet.copy()
        sheet.clear()
    }
}
