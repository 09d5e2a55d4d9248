import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Templates as T
import QtQuick.Layouts
import com.tarvonet.backend
import ".."

/// Asks before a connection is ended. Escape and the quiet button leave all as it is.
Popup {
    id: dialog

    required property LeaveBackend leave

    anchors.centerIn: T.Overlay.overlay
    width: 420
    padding: Style.paddingPage
    modal: true
    focus: true
    closePolicy: Popup.CloseOnEscape
    visible: leave ? leave.open : false
    onOpened: {
        again.checked = false
        stay.forceActiveFocus(Qt.TabFocusReason)
    }
    onClosed: if (leave) leave.reject()

    T.Overlay.modal: Rectangle { color: Style.dim }

    background: Rectangle {
        radius: Style.radiusCard
        color: Style.controlBg
        border.width: 1
        border.color: Style.controlBorder
    }

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
