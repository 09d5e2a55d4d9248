import QtQuick
import QtQuick.Layouts
import com.tarvonet.backend
import ".."

/// Asks before a connection is ended. Escape and the quiet button leave all as it is.
Sheet {
    id: dialog

    required property LeaveBackend leave

    width: 420
    visible: leave ? leave.open : false
    onOpened: {
        again.checked = false
        stay.forceActiveFocus(Qt.TabFocusReason)
    }
    onClosed: if (leave) leave.reject()

    ColumnLayout {
        width: dialog.availableWidth
        spacing: Style.spacingMedium

        AppText {
            objectName: "leaveTitle"
            Layout.fillWidth: true
            text: dialog.leave ? dialog.leave.title : ""
            color: Style.textActive
            font.pixelSize: Style.fontTitle
            font.weight: Font.Bold
        }

        AppText {
            Layout.fillWidth: true
            text: dialog.leave ? dialog.leave.text : ""
            color: Style.textCaption
            lineHeight: 1.3
            wrapMode: Text.Wrap
        }

        CustomCheckBox {
            id: again

            objectName: "leaveNeverAgain"
            text: qsTr("不再询问")
        }

        RowLayout {
            Layout.fillWidth: true
            Layout.topMargin: Style.spacingSmall
            spacing: Style.spacingMedium

            CustomButton {
                id: stay

                objectName: "leaveReject"
                Layout.fillWidth: true
                Layout.preferredWidth: 1
                text: qsTr("取消")
                onClicked: dialog.leave.reject()
            }

            CustomButton {
                objectName: "leaveAccept"
                Layout.fillWidth: true
                Layout.preferredWidth: 1
                primary: true
                accentColor: Style.endsSession
                text: dialog.leave ? dialog.leave.actionText : ""
                onClicked: dialog.leave.accept(again.checked)
            }
        }
    }
}
