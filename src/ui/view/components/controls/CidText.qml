import QtQuick
import "../.."

/// The line "CID：1001". The number may come with a prefix of its own.
AppText {
    property string cid: "--"

    text: qsTr("CID：%1").arg(cid.replace(/^\s*CID\s*[:：]\s*/i, "") || "--")
    color: Style.textCaption
    font.pixelSize: Style.fontSmall
    elide: Text.ElideRight
}
