import QtQuick
import QtQuick.Layouts
import com.tarvonet.backend
import "../.."

/// 连接参数: callsign, type, SELCAL, and the one button that connects or disconnects.
Card {
    id: form

    required property ServerBackend server
    required property LeaveBackend leave
    readonly property bool connected: server ? server.serverConnected : false
    readonly property bool ends: server ? server.buttonEnds : false

    Component.onCompleted: {
        if (connected)
            return
        callsignField.forceActiveFocus()
        callsignField.selectAll() // another one replaces what is offered
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: Style.spacingMedium

        SectionTitle {
            Layout.fillWidth: true
            title: qsTr("连接参数")
            note: form.server ? form.server.platformLabel : "--"
        }

        FormField {
            Layout.fillWidth: true
            label: qsTr("呼号")

            CustomTextField {
                id: callsignField

                objectName: "callsignField"
                Accessible.name: qsTr("呼号")
                Layout.fillWidth: true
                enabled: !form.connected
                text: form.server ? form.server.callsign : ""
                placeholderText: qsTr("例如：B2352 / CES2352 / CES2352A")
                font.capitalization: text.length > 0 ? Font.AllUppercase : Font.MixedCase
                inputMethodHints: Qt.ImhPreferUppercase | Qt.ImhNoPredictiveText
                onTextEdited: if (form.server) form.server.callsign = text
                onAccepted: form.submit()
            }
        }

        RowLayout {
            Layout.fillWidth: true
            spacing: Style.spacingMedium

            FormField {
                Layout.fillWidth: true
                Layout.preferredWidth: 1
                Layout.alignment: Qt.AlignTop
                label: qsTr("机型")

                TypeCodeField {
                    objectName: "typeCodeField"
                    Accessible.name: qsTr("机型")
                    Layout.fillWidth: true
                    enabled: !form.connected
                    server: form.server
                    maximumLength: form.server ? form.server.longestTypeCode : 0
                    placeholderText: (form.server ? form.server.typeCodeRequired : true) ? qsTr("必填") : qsTr("选填")
                    onAccepted: form.submit()
                }

                FieldHint {
                    objectName: "typeCodeHint"
                    text: form.server ? form.server.typeCodeHint : ""
                    color: Style.textWarning
                }
            }

            FormField {
                Layout.fillWidth: true
                Layout.preferredWidth: 1
                Layout.alignment: Qt.AlignTop
                label: "SELCAL"

                CustomTextField {
                    objectName: "selcalField"
                    Accessible.name: "SELCAL"
                    Layout.fillWidth: true
                    enabled: !form.connected
                    maximumLength: form.server ? form.server.longestSelcal : 0
                    text: form.server ? form.server.selcal : ""
                    placeholderText: "AB-CD"
                    font.capitalization: Font.AllUppercase
                    inputMethodHints: Qt.ImhPreferUppercase | Qt.ImhNoPredictiveText
                    onTextEdited: if (form.server) form.server.selcal = text
                    onAccepted: form.submit()
                }

                FieldHint {
                    objectName: "selcalHint"
                    text: form.server ? form.server.selcalHint : ""
                    color: Style.textWarning
                }
            }
        }

        RowLayout {
            Layout.fillWidth: true
            spacing: Style.spacingLarge

            CustomCheckBox {
                objectName: "observerBox"
                enabled: !form.connected
                text: qsTr("观察员")
                checked: form.server ? form.server.observerMode : false
                onToggled: if (form.server) form.server.observerMode = checked
            }

            CustomCheckBox {
                objectName: "coordinatedVoiceBox"
                enabled: !form.connected
                text: qsTr("协同语音")
                checked: form.server ? form.server.coordinatedVoice : false
                onToggled: if (form.server) form.server.coordinatedVoice = checked
            }
        }

        SteadyButton {
            objectName: "connectButton"
            meaning: form.ends ? "end" : "connect"
            Layout.fillWidth: true
            primary: true
            accentColor: form.ends ? Style.endsSession : Style.primary
            enabled: form.server ? form.server.buttonEnabled : false
            text: form.server ? form.server.buttonText : "--"
            onMeant: form.submitOrDisconnect()
        }

        AppText {
            objectName: "formError"
            Layout.fillWidth: true
            visible: text.length > 0
            text: form.server ? form.server.formErrorText : ""
            color: (form.server ? form.server.formErrorIsHint : true) ? Style.textCaption : Style.textError
            font.pixelSize: 13
            wrapMode: Text.Wrap
        }

        ReasonText {
            objectName: "connectFailure"
            Layout.fillWidth: true
            visible: text.length > 0
            text: form.server ? form.server.failureText : ""
        }

        AppText {
            objectName: "modeHint"
            Layout.fillWidth: true
            text: form.server ? form.server.modeHintText : "--"
            color: Style.textCaption
            font.pixelSize: Style.fontSmall
            wrapMode: Text.Wrap
        }

        Item { Layout.fillHeight: true }
    }

    /// Enter in a field connects; it never disconnects.
    function submit(): void {
        Qt.inputMethod.commit() // qmllint disable type
        if (!connected && server)
            server.requestConnect()
    }

    function submitOrDisconnect(): void {
        if (!ends)
            submit()
        else if (connected && leave)
            leave.disconnectFromNetwork()
        else if (server)
            server.requestDisconnect()
    }
}
