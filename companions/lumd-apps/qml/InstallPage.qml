// SPDX-License-Identifier: BSD-3-Clause
import QtQuick 2.15
import QtQuick.Controls 2.15 as Controls
import QtQuick.Layouts 1.15
import org.kde.kirigami 2.20 as Kirigami
import com.tovra.lumd.apps 1.0

Kirigami.Page {
    id: page
    objectName: "installPage"
    title: qsTrId("lumd-apps-install-title")
    globalToolBarStyle: Kirigami.ApplicationHeaderStyle.None
    header: Kirigami.AbstractApplicationHeader {
        PageTitle {
            anchors { fill: parent; leftMargin: Kirigami.Units.smallSpacing }
            text: page.title
            onLeft: applicationWindow().pageStack.goBack()
        }
    }

    // The page of an install that goes on can be left, and comes back with its result.
    onBackRequested: {
        if (Installer.isBusy)
            return
        event.accepted = true
        Installer.goOn()
    }
    Keys.onEscapePressed: applicationWindow().pageStack.goBack()
    Component.onCompleted: Qt.callLater(() => goOn.forceActiveFocus(Qt.TabFocusReason))
    Connections {
        target: Installer
        function onChanged() {
            if (!Installer.isBusy)
                goOn.forceActiveFocus(Qt.TabFocusReason)
        }
    }
    readonly property App installed: Installer.state === Installer.Installed && AppList.count > 0
        ? AppList.find(Installer.package) : null

    ColumnLayout {
        anchors.centerIn: parent
        width: Math.min(parent.width, Kirigami.Units.gridUnit * 24)
        spacing: Kirigami.Units.largeSpacing

        Kirigami.Icon {
            Layout.alignment: Qt.AlignHCenter
            Layout.preferredWidth: Kirigami.Units.iconSizes.huge
            Layout.preferredHeight: Kirigami.Units.iconSizes.huge
            source: Installer.state === Installer.Installed ? "dialog-positive"
                : Installer.state === Installer.Failed ? "dialog-error" : "application-vnd.android.package-archive"
            Accessible.ignored: true
        }
        Kirigami.Heading {
            objectName: "installTitle"
            Layout.fillWidth: true
            horizontalAlignment: Text.AlignHCenter
            text: Installer.title
            textFormat: Text.PlainText
            wrapMode: Text.Wrap
            Accessible.role: Accessible.AlertMessage
            Accessible.name: text
            Accessible.description: Installer.explanation
        }
        Controls.Label {
            objectName: "installFile"
            Layout.fillWidth: true
            horizontalAlignment: Text.AlignHCenter
            text: page.installed ? page.installed.name : Installer.fileName
            textFormat: Text.PlainText
            wrapMode: Text.WrapAnywhere
            maximumLineCount: 3
            elide: Text.ElideRight
        }
        Controls.ProgressBar {
            objectName: "installProgress"
            Layout.fillWidth: true
            visible: Installer.isBusy
            indeterminate: true
            Accessible.name: Installer.title
        }
        Controls.Label {
            objectName: "installExplanation"
            Layout.fillWidth: true
            horizontalAlignment: Text.AlignHCenter
            visible: text.length > 0
            text: Installer.explanation
            textFormat: Text.PlainText
            wrapMode: Text.Wrap
        }
        Flow {
            Layout.alignment: Qt.AlignHCenter
            spacing: Kirigami.Units.smallSpacing
            ActionButton {
                objectName: "startForInstall"
                visible: Installer.state === Installer.Waiting && Runtime.canStart
                text: qsTrId("lumd-apps-start")
                icon.name: "media-playback-start"
                onClicked: Runtime.start()
            }
            ActionButton {
                objectName: "launchInstalled"
                visible: page.installed !== null
                text: qsTrId("lumd-apps-launch")
                icon.name: "media-playback-start"
                onClicked: page.installed.launch()
            }
            ActionButton {
                id: goOn
                objectName: "goOn"
                visible: !Installer.isBusy
                text: Installer.waiting > 0 ? qsTrId("lumd-apps-install-next") : qsTrId("lumd-apps-done")
                onClicked: Installer.goOn()
            }
        }
    }
}
