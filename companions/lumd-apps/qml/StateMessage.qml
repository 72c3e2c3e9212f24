// SPDX-License-Identifier: BSD-3-Clause
import QtQuick 2.15
import QtQuick.Controls 2.15 as Controls
import QtQuick.Layouts 1.15
import org.kde.kirigami 2.20 as Kirigami
import com.tovra.lumd.apps 1.0

// What stands in the place of an empty list.
ColumnLayout {
    id: message
    property bool isSearching: false
    readonly property bool isTrouble: !Runtime.isReachable && Runtime.state !== Runtime.Unknown
    readonly property bool isWaiting: !isTrouble && !AppList.isRead
    readonly property string title: isTrouble || isWaiting ? Runtime.isReachable ? qsTrId("lumd-apps-reading") : Runtime.title
        : isSearching ? qsTrId("lumd-apps-nothing-found") : qsTrId("lumd-apps-none")
    readonly property string explanation: isTrouble ? Runtime.explanation
        : !Runtime.isReachable && Runtime.isLate ? qsTrId("lumd-apps-late")
        : isWaiting || isSearching ? "" : qsTrId("lumd-apps-explain-none")
    spacing: Kirigami.Units.largeSpacing
    Accessible.role: Accessible.AlertMessage
    Accessible.name: title
    Accessible.description: explanation

    Kirigami.Icon {
        Layout.alignment: Qt.AlignHCenter
        Layout.preferredWidth: Kirigami.Units.iconSizes.huge
        Layout.preferredHeight: Kirigami.Units.iconSizes.huge
        visible: !message.isWaiting
        opacity: 0.6
        isMask: true
        color: Kirigami.Theme.textColor
        source: message.isTrouble ? "dialog-warning" : message.isSearching ? "edit-find"
            : "application-vnd.android.package-archive"
    }
    Controls.BusyIndicator {
        Layout.alignment: Qt.AlignHCenter
        visible: message.isWaiting
        running: visible
        Accessible.name: message.title
    }
    Kirigami.Heading {
        objectName: "stateTitle"
        Layout.fillWidth: true
        horizontalAlignment: Text.AlignHCenter
        text: message.title
        wrapMode: Text.Wrap
        textFormat: Text.PlainText
    }
    Controls.Label {
        objectName: "stateExplanation"
        Layout.fillWidth: true
        horizontalAlignment: Text.AlignHCenter
        visible: text.length > 0
        text: message.explanation
        wrapMode: Text.Wrap
        textFormat: Text.PlainText
    }
}
