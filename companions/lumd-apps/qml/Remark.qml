// SPDX-License-Identifier: BSD-3-Clause
import QtQuick 2.15
import QtQuick.Layouts 1.15
import org.kde.kirigami 2.20 as Kirigami
import com.tovra.lumd.apps 1.0

// How the last action on an app went, and whether it is being removed.
Kirigami.InlineMessage {
    id: remark
    objectName: "remark"
    property App app
    readonly property bool isLeaving: app !== null && app.removal !== App.Installed
    Layout.fillWidth: true
    visible: text.length > 0
    text: !app ? "" : app.removal === App.Queued ? qsTrId("lumd-apps-remove-queued")
        : app.removal === App.Removing ? qsTrId("lumd-apps-removing") : app.remark
    type: app && app.isProblem ? Kirigami.MessageType.Error : Kirigami.MessageType.Information
    Accessible.role: Accessible.AlertMessage
    Accessible.name: text
}
